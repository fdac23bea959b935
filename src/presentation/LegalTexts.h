#pragma once

#include <span>
#include <string_view>

namespace vellmark {

/// A file of resources/legal as it stands there: a "# " title, "## " headings, "- " items and
/// paragraphs, apart by blank lines, in lines of any length.
struct LegalTextFile {
    std::string_view name;     ///< "terms", "privacy"
    std::string_view language; ///< its code
    std::string_view text;
};

/// All of them: constant data, made when the program is built.
std::span<const LegalTextFile> legalTextFiles();

} // namespace vellmark
