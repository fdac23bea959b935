#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace vellmark {

/// The help of the program or of one subcommand, in the user's words.
struct HelpPage {
    struct Entry {
        std::string term;
        std::string text;
    };
    struct Section {
        std::string title;
        std::vector<Entry> entries;
    };

    std::string summary;
    /// "Usage: vellmark log [OPTIONS]".
    std::string usage;
    /// Those without entries are left out.
    std::vector<Section> sections;
    /// Below everything; may be empty.
    std::string detail;

    /// No line is longer than `width`; the texts of all sections begin in one column.
    std::string text(std::size_t width) const;
};

} // namespace vellmark
