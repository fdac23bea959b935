#include "text/TerminalSheet.h"

#include "text/Characters.h"

#include <algorithm>
#include <limits>

namespace vellmark {

namespace {

constexpr std::uint32_t blank = ' ';
/// The right half of a wide character: no character of Unicode.
constexpr std::uint32_t rightHalf = 0x110000;
/// Cells from here on are marks by their index.
constexpr std::uint32_t firstMark = 0x80000000;

/// What moving a row costs in cells.
constexpr std::size_t rowWork = 4;

} // namespace

TerminalSheet::TerminalSheet(std::size_t bytes)
    : extent_(bytes + 1000), mostCells_(std::min<std::size_t>(
                                 bytes * 4 + 65536, std::numeric_limits<std::uint32_t>::max())),
      work_(bytes * 64 + 250000) {}

void TerminalSheet::exhaust() {
    isExhausted_ = true;
    rows_.clear();
    cells_.clear();
    marks_.clear();
}

bool TerminalSheet::spend(std::size_t cells) {
    if (isExhausted_) {
        return false;
    }
    if (cells > work_) {
        exhaust();
        return false;
    }
    work_ -= cells;
    return true;
}

bool TerminalSheet::makeRow(std::size_t row) {
    if (isExhausted_ || row >= extent_) {
        return false;
    }
    if (row >= rows_.size()) {
        if (!spend(rowWork * (row - rows_.size()))) {
            return false;
        }
        rows_.resize(row + 1);
    }
    return true;
}

bool TerminalSheet::extend(Row& row, std::size_t length) {
    if (length <= row.length) {
        return true;
    }
    if (!spend(length - row.length - 1)) { // one of them is the caller's character
        return false;
    }
    if (length > row.capacity) {
        const bool isLast = std::size_t{row.begin} + row.capacity == cells_.size();
        const std::size_t capacity =
            isLast ? length : std::max<std::size_t>(length, row.capacity * 2);
        const std::size_t begin = isLast ? row.begin : cells_.size();
        if (begin + capacity > mostCells_) {
            exhaust();
            return false;
        }
        cells_.resize(begin + capacity);
        if (!isLast) {
            std::copy_n(cellsOf(row), row.length,
                        cells_.begin() + static_cast<std::ptrdiff_t>(begin));
        }
        row.begin = static_cast<std::uint32_t>(begin);
        row.capacity = static_cast<std::uint32_t>(capacity);
    }
    std::fill(cellsOf(row) + row.length, cellsOf(row) + length, blank);
    row.length = static_cast<std::uint32_t>(length);
    return true;
}

void TerminalSheet::part(Row& row, std::size_t column) {
    Cell* const cells = cellsOf(row);
    if (column > 0 && column < row.length && cells[column] == rightHalf) {
        cells[column - 1] = blank;
        cells[column] = blank;
    }
}

void TerminalSheet::put(std::size_t row, std::size_t column, char32_t character,
                        std::size_t width) {
    if (!makeRow(row) || !extend(rows_[row], column + width)) {
        return;
    }
    Row& target = rows_[row];
    part(target, column);
    part(target, column + width);
    Cell* const cell = cellsOf(target) + column;
    cell[0] = character;
    if (width == 2) {
        cell[1] = rightHalf;
    }
}

void TerminalSheet::addMark(std::size_t row, std::size_t column, char32_t mark) {
    if (row >= rows_.size() || column == 0 || column > rows_[row].length) {
        return;
    }
    Cell* cell = cellsOf(rows_[row]) + column - 1;
    if (*cell == rightHalf) {
        --cell;
    }
    marks_.push_back({mark, *cell});
    *cell = firstMark + static_cast<Cell>(marks_.size() - 1);
}

void TerminalSheet::erase(std::size_t row, std::size_t begin, std::size_t end) {
    if (row >= rows_.size()) {
        return;
    }
    Row& target = rows_[row];
    if (end >= target.length) {
        eraseFrom(row, begin);
        return;
    }
    if (begin >= end || !spend(end - begin)) {
        return;
    }
    part(target, begin);
    part(target, end);
    std::fill(cellsOf(target) + begin, cellsOf(target) + end, blank);
}

void TerminalSheet::eraseFrom(std::size_t row, std::size_t column) {
    if (row < rows_.size() && column < rows_[row].length) {
        part(rows_[row], column);
        rows_[row].length = static_cast<std::uint32_t>(column);
    }
}

void TerminalSheet::insertBlanks(std::size_t row, std::size_t column, std::size_t count) {
    if (row >= rows_.size() || column >= rows_[row].length) {
        return;
    }
    Row& target = rows_[row];
    const std::size_t length = target.length;
    count = std::min(count, extent_ - std::min(extent_, length));
    if (!spend(length - column) || !extend(target, length + count)) {
        return;
    }
    part(target, column);
    Cell* const cells = cellsOf(target);
    std::copy_backward(cells + column, cells + length, cells + length + count);
    std::fill_n(cells + column, count, blank);
}

void TerminalSheet::deleteCells(std::size_t row, std::size_t column, std::size_t count) {
    if (row >= rows_.size() || column >= rows_[row].length) {
        return;
    }
    Row& target = rows_[row];
    const std::size_t end = std::min<std::size_t>(column + count, target.length);
    if (!spend(target.length - end)) {
        return;
    }
    part(target, column);
    part(target, end);
    Cell* const cells = cellsOf(target);
    std::copy(cells + end, cells + target.length, cells + column);
    target.length -= static_cast<std::uint32_t>(end - column);
}

void TerminalSheet::insertRows(std::size_t row, std::size_t count) {
    if (row >= rows_.size()) {
        return;
    }
    count = std::min(count, extent_ - rows_.size());
    if (spend(rowWork * (rows_.size() - row + count))) {
        rows_.insert(rows_.begin() + static_cast<std::ptrdiff_t>(row), count, Row());
    }
}

void TerminalSheet::deleteRows(std::size_t row, std::size_t count) {
    if (row >= rows_.size()) {
        return;
    }
    const std::size_t end = row + std::min(count, rows_.size() - row);
    if (spend(rowWork * (rows_.size() - end))) {
        rows_.erase(rows_.begin() + static_cast<std::ptrdiff_t>(row),
                    rows_.begin() + static_cast<std::ptrdiff_t>(end));
    }
}

void TerminalSheet::eraseRowsBefore(std::size_t row) {
    const std::size_t end = std::min(row, rows_.size());
    if (spend(rowWork * end)) {
        for (std::size_t index = 0; index < end; ++index) {
            rows_[index].length = 0;
        }
    }
}

void TerminalSheet::eraseRowsFrom(std::size_t row) {
    if (row == 0) {
        rows_.clear();
        cells_.clear();
        marks_.clear();
    } else if (row < rows_.size()) {
        rows_.resize(row);
    }
}

void TerminalSheet::append(std::string& text, Cell cell) const {
    std::u32string characters;
    for (; cell >= firstMark; cell = marks_[cell - firstMark].below) {
        characters.push_back(marks_[cell - firstMark].character);
    }
    characters.push_back(cell);
    for (auto character = characters.rbegin(); character != characters.rend(); ++character) {
        appendCharacter(text, *character);
    }
}

std::string TerminalSheet::text() const {
    const auto removeEnding = [](std::string& text, std::size_t begin, char ending) {
        while (text.size() > begin && text.back() == ending) {
            text.pop_back();
        }
    };
    std::string text;
    for (const Row& row : rows_) {
        const std::size_t begin = text.size();
        for (std::uint32_t column = 0; column < row.length; ++column) {
            const Cell cell = cells_[row.begin + column];
            if (cell < 0x80) {
                text.push_back(static_cast<char>(cell));
            } else if (cell != rightHalf) {
                append(text, cell);
            }
        }
        removeEnding(text, begin, blank);
        text.push_back('\n');
    }
    removeEnding(text, 0, '\n');
    return text;
}

} // namespace vellmark
