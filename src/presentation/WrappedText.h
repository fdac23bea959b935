#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace vellmark {

/// How a text of many lines stands in rows of equal columns, as a terminal has them. A line that is
/// too long goes on below, two columns deeper than it began. Ten megabytes are broken in a few
/// milliseconds, so a window may do that whenever its width changes.
///
/// Places are bytes of the text, at the beginning of characters. The text, which must stay where it
/// is, may be up to 4 GB long.
class WrappedText {
public:
    struct Row {
        std::size_t begin = 0;
        /// Without the line's end; at a break with the blanks before it.
        std::size_t end = 0;
        /// Where it starts.
        std::size_t column = 0;
        bool operator==(const Row&) const = default;
    };

    explicit WrappedText(std::string_view text = {}) : text_(text) {}

    /// To be called before anything is asked.
    void wrap(std::size_t columns);

    std::string_view text() const { return text_; }
    std::size_t rowCount() const { return starts_.size(); }
    Row row(std::size_t index) const;
    /// The row in which a place is shown; one at a break, in the later row.
    std::size_t rowOf(std::size_t place) const;
    /// The column before a place in its row.
    std::size_t columnOf(std::size_t place) const;
    /// The place in a row that is nearest to a column, which may have a fraction.
    std::size_t placeAt(std::size_t row, double column) const;

    /// The beginnings of the characters before and after a place.
    std::size_t before(std::size_t place) const;
    std::size_t after(std::size_t place) const;
    /// Where the word at a place, or what is between words there, begins and ends.
    std::size_t wordBegin(std::size_t place) const;
    std::size_t wordEnd(std::size_t place) const;

    /// How many columns a character takes; here control characters are one.
    static std::size_t columnsOf(char32_t character);

private:
    struct Start {
        std::uint32_t begin;
        std::uint32_t column;
    };
    void wrapLine(std::size_t begin, std::size_t end);

    std::string_view text_;
    std::size_t columns_ = 0;
    std::vector<Start> starts_;
};

} // namespace vellmark
