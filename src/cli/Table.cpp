#include "cli/Table.h"

#include <algorithm>
#include <numeric>

namespace vellmark {
namespace {

constexpr std::size_t gap = 2;
constexpr std::size_t leastWidth = 4;

} // namespace

std::vector<std::size_t> Table::columnWidths(const TerminalOutput& output) const {
    std::vector<std::size_t> widths;
    for (std::size_t column = 0; column < columns_.size(); ++column) {
        widths.push_back(displayWidth(columns_[column].title));
        for (const auto& row : rows_)
            widths.back() = std::max(widths.back(), displayWidth(row[column].text));
    }
    if (!output.isTerminal())
        return widths;
    const std::size_t gaps = gap * (columns_.size() - 1);
    while (std::accumulate(widths.begin(), widths.end(), gaps) > output.width()) {
        const auto widest = std::max_element(widths.begin(), widths.end());
        if (*widest <= leastWidth)
            break;
        --*widest;
    }
    return widths;
}

std::string Table::line(const std::vector<Cell>& cells, const std::vector<std::size_t>& widths,
                        const TerminalOutput& output) const {
    std::string text;
    std::size_t blanks = 0;
    for (std::size_t column = 0; column < cells.size(); ++column) {
        const std::string cut = cutToWidth(cells[column].text, widths[column]);
        const std::size_t filling = widths[column] - displayWidth(cut);
        const bool right = columns_[column].alignment == Alignment::right;
        // Blanks are kept until text follows, so that no line ends with them.
        if (!cut.empty()) {
            text.append(blanks + (right ? filling : 0), ' ');
            text += output.styled(cells[column].style, cut);
            blanks = right ? 0 : filling;
        } else {
            blanks += filling;
        }
        blanks += gap;
    }
    return text + "\n";
}

void Table::write(TerminalOutput& output) const {
    const auto widths = columnWidths(output);
    std::vector<Cell> titles;
    for (const Column& column : columns_)
        titles.push_back({column.title, TextStyle::dim});
    std::string text = line(titles, widths, output);
    for (const auto& row : rows_)
        text += line(row, widths, output);
    output.write(text);
}

} // namespace vellmark
