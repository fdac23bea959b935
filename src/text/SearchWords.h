#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vellmark {

/// What somebody searches for, word by word: matches a text that contains every word, whatever the
/// case, accents and order. Safe to use from any thread.
class SearchWords {
public:
    explicit SearchWords(std::string_view query);

    /// Nothing to search for: everything matches.
    bool empty() const { return words_.empty(); }
    bool areIn(std::string_view text) const;

private:
    std::vector<std::string> words_;
};

} // namespace vellmark
