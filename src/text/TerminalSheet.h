#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <vector>

namespace vellmark {

/// What stands on a terminal of any height and width: rows of cells, each with one character, the
/// marks on it, or the right half of a wide one. Rows and columns count from 0; a place where
/// nothing was put is blank.
///
/// What can be asked for is bounded by what `bytes` of output can fill: places beyond `bytes` and
/// some are not there, and edits that would move or blank more than a multiple of `bytes` cells
/// exhaust the sheet, which then stays empty.
class TerminalSheet {
public:
    explicit TerminalSheet(std::size_t bytes);

    /// No row and no column is as large as this.
    std::size_t extent() const { return extent_; }
    std::size_t rowCount() const { return rows_.size(); }

    /// Puts a character of `width` columns (1 or 2) over what is there.
    void put(std::size_t row, std::size_t column, char32_t character, std::size_t width);
    /// Adds a character without a width to the one that ends before `column`.
    void addMark(std::size_t row, std::size_t column, char32_t mark);

    /// Blanks the columns from `begin` to before `end`.
    void erase(std::size_t row, std::size_t begin, std::size_t end);
    void eraseFrom(std::size_t row, std::size_t column);
    /// Moves what stands from `column` on to the right, or to the left over what stands there.
    void insertBlanks(std::size_t row, std::size_t column, std::size_t count);
    void deleteCells(std::size_t row, std::size_t column, std::size_t count);

    /// Moves the rows from `row` on down, or up over those that stand there.
    void insertRows(std::size_t row, std::size_t count);
    void deleteRows(std::size_t row, std::size_t count);
    /// Blanks the rows before `row`.
    void eraseRowsBefore(std::size_t row);
    void eraseRowsFrom(std::size_t row);

    /// Counts work that no byte of the output accounts for; false when it becomes too much.
    bool spend(std::size_t cells);

    /// The rows with line feeds between them, without the blanks at their ends.
    std::string text() const;

private:
    /// A character, or a mark with what it stands on.
    using Cell = std::uint32_t;
    struct Mark {
        char32_t character;
        Cell below;
    };
    /// A part of `cells_`.
    struct Row {
        std::uint32_t begin = 0;
        std::uint32_t length = 0;
        std::uint32_t capacity = 0;
    };

    Cell* cellsOf(const Row& row) { return cells_.data() + row.begin; }
    bool makeRow(std::size_t row);
    /// Pads the row with blanks up to `length`; false when there is no room.
    bool extend(Row& row, std::size_t length);
    /// A wide character that reaches over the border before `column` becomes blank.
    void part(Row& row, std::size_t column);
    void exhaust();
    void append(std::string& text, Cell cell) const;

    std::size_t extent_;
    std::size_t mostCells_;
    std::size_t work_;
    bool isExhausted_ = false;
    std::deque<Row> rows_;
    std::vector<Cell> cells_;
    std::vector<Mark> marks_;
};

} // namespace vellmark
