#pragma once

#include "cli/DisplayWidth.h"
#include "cli/TerminalOutput.h"

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace vellmark {

/// Rows in columns of equal width. On a terminal that is too narrow for them, also without those
/// that are dispensable, each row becomes a paragraph instead, headed by its first cell, with a
/// line for each other one: nothing is cut.
class Table {
public:
    struct Column {
        std::string title;
        Alignment alignment = Alignment::left;
        /// Takes what room there is, and at least so many columns; 0: as wide as its texts.
        std::size_t leastWidth = 0;
        /// The first to go where there is no room.
        bool isDispensable = false;
    };
    struct Cell {
        std::string text;
        TextStyle style = TextStyle::plain;
        /// In an elastic column, in place of `text`: draws so many columns.
        std::function<std::string(std::size_t width)> picture = {};
    };

    explicit Table(std::vector<Column> columns) : columns_(std::move(columns)) {}

    /// As many cells as there are columns.
    void addRow(std::vector<Cell> cells) { rows_.push_back(std::move(cells)); }

    std::string text(const TerminalOutput& output) const;

private:
    std::vector<std::size_t> columnWidths() const;
    Table withoutDispensable() const;
    std::string rows(std::vector<std::size_t> widths, const TerminalOutput& output) const;
    std::string paragraphs(const TerminalOutput& output) const;
    std::string line(const std::vector<Cell>& cells, const std::vector<std::size_t>& widths,
                     const TerminalOutput& output) const;
    std::string paragraph(const std::vector<Cell>& cells, const TerminalOutput& output) const;

    std::vector<Column> columns_;
    std::vector<std::vector<Cell>> rows_;
};

} // namespace vellmark
