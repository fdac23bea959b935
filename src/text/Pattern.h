#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace re2 {
class RE2;
} // namespace re2

namespace vellmark {

/// A regular expression for text that other programs wrote: linear in time, safe on any input.
///
/// The syntax is RE2's with the class meanings of ICU's engine: \s, \d and \w (and \D inside and
/// outside brackets) go by Unicode, "." ends at every kind of line break. Two things stay narrower
/// than there: \b knows the word characters of ASCII alone, and \S and \W inside brackets are
/// ASCII's. "$" is the very end of the text.
///
/// Groups are numbered from 1; group 0 is the whole match. Bytes that are no UTF-8 never match and
/// are kept by `replaceAll` (`repairedUTF8` makes them match). A pattern that cannot be built
/// matches nothing (`isValid` is false). Immutable, usable from several threads at once.
class Pattern {
public:
    /// One match; the views point into the searched text. A group that took no part is absent.
    struct Match {
        /// Where the match begins, in bytes from the start of the searched text.
        std::size_t position = 0;
        std::vector<std::optional<std::string_view>> groups;

        std::string_view whole() const { return *groups.front(); }
        std::string_view group(std::size_t index) const { return groups[index].value_or(""); }
    };

    /// With `tail`, characters of ASCII, a match goes on over all of them that follow it: what a
    /// bracket expression with a star would do at the end, in a tenth of the time for a long run.
    explicit Pattern(std::string_view expression, std::string_view tail = {});
    ~Pattern();
    Pattern(Pattern&&) noexcept;
    Pattern& operator=(Pattern&&) noexcept;

    bool isValid() const;

    /// The first match at or after `from`, anywhere in `text`.
    std::optional<Match> search(std::string_view text, std::size_t from = 0) const;

    /// True when the pattern matches somewhere in `text`.
    bool matches(std::string_view text) const;

    /// Every match replaced by `replacement`, in which "$1" stands for group 1; absent when the
    /// pattern could not be applied.
    std::optional<std::string> replaceAll(std::string_view text,
                                          std::string_view replacement) const;

    /// Bytes of the searched text and what stands for them in the result. What a group keeps is no
    /// part of it.
    struct Edit {
        std::size_t oldBegin = 0;
        std::size_t oldEnd = 0;
        std::size_t newBegin = 0;
        std::size_t newEnd = 0;
    };
    /// The same; adds to `edits`, in their order, what was changed.
    std::optional<std::string> replaceAll(std::string_view text, std::string_view replacement,
                                          std::vector<Edit>& edits) const;

private:
    std::optional<std::string> replaced(std::string_view text, std::string_view replacement,
                                        std::vector<Edit>* edits) const;

    std::unique_ptr<re2::RE2> expression_;
    /// By character, whether it is one of the tail.
    std::array<bool, 256> isTail_{};
};

} // namespace vellmark
