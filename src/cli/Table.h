#pragma once

#include "cli/DisplayWidth.h"
#include "cli/TerminalOutput.h"

#include <cstddef>
#include <string>
#include <vector>

namespace vellmark {

/// Rows in columns of equal width. On a terminal the widest column gives way first until a row
/// fits on a line; elsewhere nothing is cut.
class Table {
public:
    struct Column {
        std::string title;
        Alignment alignment = Alignment::left;
    };
    struct Cell {
        std::string text;
        TextStyle style = TextStyle::plain;
    };

    explicit Table(std::vector<Column> columns) : columns_(std::move(columns)) {}

    /// As many cells as there are columns.
    void addRow(std::vector<Cell> cells) { rows_.push_back(std::move(cells)); }

    void write(TerminalOutput& output) const;

private:
    std::vector<std::size_t> columnWidths(const TerminalOutput& output) const;
    std::string line(const std::vector<Cell>& cells, const std::vector<std::size_t>& widths,
                     const TerminalOutput& output) const;

    std::vector<Column> columns_;
    std::vector<std::vector<Cell>> rows_;
};

} // namespace vellmark
