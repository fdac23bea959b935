#include "cli/Table.h"

#include "cli/DisplayWidth.h"

#include <algorithm>
#include <numeric>

namespace vellmark {
namespace {

std::size_t lineWidth(const std::vector<std::size_t>& widths) {
    return std::accumulate(widths.begin(), widths.end(), columnGap * (widths.size() - 1));
}

std::string textOf(const Table::Cell& cell, std::size_t width) {
    return cell.picture ? cell.picture(width) : cell.text;
}

} // namespace

/// Of elastic columns what they take at least.
std::vector<std::size_t> Table::columnWidths() const {
    std::vector<std::size_t> widths;
    for (std::size_t column = 0; column < columns_.size(); ++column) {
        widths.push_back(
            std::max(displayWidth(columns_[column].title), columns_[column].leastWidth));
        for (const auto& row : rows_) {
            widths.back() = std::max(widths.back(), displayWidth(row[column].text));
        }
    }
    return widths;
}

std::string Table::line(const std::vector<Cell>& cells, const std::vector<std::size_t>& widths,
                        const TerminalOutput& output) const {
    std::string text;
    std::size_t blanks = 0;
    for (std::size_t column = 0; column < cells.size(); ++column) {
        const std::string content = textOf(cells[column], widths[column]);
        const std::size_t filling = widths[column] - displayWidth(content);
        const bool right = columns_[column].alignment == Alignment::right;
        // Blanks are kept until text follows, so that no line ends with them.
        if (!content.empty()) {
            text.append(blanks + (right ? filling : 0), ' ');
            text += output.styled(cells[column].style, content);
            blanks = right ? 0 : filling;
        } else {
            blanks += filling;
        }
        blanks += columnGap;
    }
    return text + "\n";
}

std::string Table::paragraph(const std::vector<Cell>& cells, const TerminalOutput& output) const {
    const std::size_t width = output.width();
    std::string text;
    for (const std::string& line : wrapped(cells.front().text, width)) {
        text += output.styled(cells.front().style, line) + "\n";
    }
    std::size_t titles = 0;
    for (const Column& column : columns_) {
        titles = std::max(titles, displayWidth(column.title));
    }
    const std::size_t start = pageIndent + titles + columnGap;
    const std::size_t room = width > start ? width - start : 1;
    for (std::size_t column = 1; column < cells.size(); ++column) {
        std::string before = std::string(pageIndent, ' ') +
                             output.styled(TextStyle::dim, padded(columns_[column].title, titles));
        const Cell& cell = cells[column];
        const auto lines =
            cell.picture ? std::vector{cell.picture(room)} : wrapped(cell.text, room);
        for (const std::string& line : lines) {
            text += before + std::string(columnGap, ' ') + output.styled(cell.style, line) + "\n";
            before = std::string(pageIndent + titles, ' ');
        }
    }
    return text;
}

std::string Table::paragraphs(const TerminalOutput& output) const {
    std::string text;
    for (const auto& row : rows_) {
        text += (text.empty() ? "" : "\n") + paragraph(row, output);
    }
    return text;
}

std::string Table::rows(std::vector<std::size_t> widths, const TerminalOutput& output) const {
    const auto elastic =
        std::ranges::find_if(columns_, [](const Column& column) { return column.leastWidth > 0; });
    const std::size_t taken = lineWidth(widths);
    if (elastic != columns_.end() && taken < output.width()) {
        widths[static_cast<std::size_t>(elastic - columns_.begin())] += output.width() - taken;
    }
    std::vector<Cell> titles;
    for (const Column& column : columns_) {
        titles.push_back({column.title, TextStyle::dim});
    }
    std::string text = line(titles, widths, output);
    for (const auto& row : rows_) {
        text += line(row, widths, output);
    }
    return text;
}

Table Table::withoutDispensable() const {
    Table table({});
    table.rows_.resize(rows_.size());
    for (std::size_t column = 0; column < columns_.size(); ++column) {
        if (columns_[column].isDispensable) {
            continue;
        }
        table.columns_.push_back(columns_[column]);
        for (std::size_t row = 0; row < rows_.size(); ++row) {
            table.rows_[row].push_back(rows_[row][column]);
        }
    }
    return table;
}

std::string Table::text(const TerminalOutput& output) const {
    const auto fits = [&output](const std::vector<std::size_t>& widths) {
        return !output.isTerminal() || lineWidth(widths) <= output.width();
    };
    if (const auto widths = columnWidths(); fits(widths)) {
        return rows(widths, output);
    }
    const Table least = withoutDispensable();
    if (const auto widths = least.columnWidths(); fits(widths)) {
        return least.rows(widths, output);
    }
    return paragraphs(output);
}

} // namespace vellmark
