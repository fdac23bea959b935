#include "presentation/WrappedText.h"
#include "text/Characters.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

namespace vellmark {
namespace {

std::vector<std::string> rowsOf(const std::string& text, std::size_t columns) {
    WrappedText wrapped(text);
    wrapped.wrap(columns);
    std::vector<std::string> rows;
    for (std::size_t index = 0; index < wrapped.rowCount(); ++index) {
        const WrappedText::Row row = wrapped.row(index);
        rows.push_back(std::string(row.column, '.') + text.substr(row.begin, row.end - row.begin));
    }
    return rows;
}

TEST(WrappedText, GoesOnDeeperThanTheLineBegan) {
    using Rows = std::vector<std::string>;
    EXPECT_EQ(rowsOf("", 20), Rows{""});
    EXPECT_EQ(rowsOf("a\n\nb\n", 20), (Rows{"a", "", "b", ""}));
    EXPECT_EQ(rowsOf("  Program: one two three four", 16),
              (Rows{"  Program: one ", "....two three ", "....four"}));
    EXPECT_EQ(rowsOf("0123456789abcdefghij", 10), (Rows{"0123456789", "..abcdefgh", "..ij"}));
    // Wide characters take two columns, marks none.
    EXPECT_EQ(rowsOf("太郎太郎太郎", 8), (Rows{"太郎太郎", "..太郎"}));
    EXPECT_EQ(rowsOf("e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301", 8).size(), 1U);
}

// Whatever stands in it: the rows are the text, none is too wide, and place and column lead to each
// other.
TEST(WrappedText, RowsAreTheTextWhateverItHolds) {
    const std::string parts[] = {
        "word", " ",         "   ",  "\n", "ü",
        "太",   "e\u0301",   "\xFF", "\t", "a-very-long-name-without-blanks",
        "…",    "\U0001F511"};
    std::mt19937 random(7);
    const auto upTo = [&random](std::size_t most) {
        return std::uniform_int_distribution<std::size_t>(0, most)(random);
    };
    for (int round = 0; round < 2000; ++round) {
        std::string text;
        for (std::size_t count = upTo(40); count > 0; --count) {
            text += parts[upTo(std::size(parts) - 1)];
        }
        const std::size_t columns = 8 + upTo(30);
        WrappedText wrapped(text);
        wrapped.wrap(columns);
        std::size_t next = 0;
        for (std::size_t index = 0; index < wrapped.rowCount(); ++index) {
            const WrappedText::Row row = wrapped.row(index);
            ASSERT_EQ(row.begin, next) << testing::PrintToString(text);
            next = row.end + (row.end < text.size() && text[row.end] == '\n' ? 1 : 0);
            std::size_t width = row.column;
            const std::size_t shown =
                std::min(text.find_last_not_of(' ', row.end - 1) + 1, row.end);
            for (std::size_t at = row.begin; row.end > 0 && at < shown;) {
                width += WrappedText::columnsOf(nextCharacter(text, at));
            }
            ASSERT_LE(width, columns) << testing::PrintToString(text);
            for (std::size_t at = row.begin; at < row.end; at = wrapped.after(at)) {
                ASSERT_EQ(wrapped.rowOf(at), index);
                ASSERT_EQ(wrapped.before(wrapped.after(at)), at) << testing::PrintToString(text);
                const auto column = static_cast<double>(wrapped.columnOf(at));
                ASSERT_EQ(wrapped.columnOf(wrapped.placeAt(index, column)), wrapped.columnOf(at));
            }
        }
        ASSERT_EQ(next, text.size());
    }
}

} // namespace
} // namespace vellmark
