#include "cli/CompactView.h"

#include "cli/DisplayWidth.h"
#include "cli/UsageView.h"
#include "text/TerminalText.h"

#include <algorithm>
#include <cstddef>

namespace vellmark {
namespace {

constexpr std::size_t mostRows = 2;

/// Text with its columns, which styles do not count to.
struct Item {
    std::string text;
    std::size_t width = 0;
};

/// The window with the worst health, of several the one with the least left.
const UsageRowContent* mostPressing(const AgentBlockContent& agent) {
    const auto less = [](const UsageRowContent& first, const UsageRowContent& second) {
        if (first.bar.health != second.bar.health) {
            return worse(first.bar.health, second.bar.health) == second.bar.health;
        }
        return first.bar.usedShare < second.bar.usedShare;
    };
    const auto found = std::ranges::max_element(agent.rows, less);
    return found == agent.rows.end() ? nullptr : &*found;
}

enum class Detail { window, figure, shortName };

Item itemOf(const AgentBlockContent& agent, Detail detail, const TerminalOutput& output,
            const Localization& words) {
    std::string text = detail == Detail::shortName ? agent.name : agentName(agent.id, words);
    const UsageRowContent* row = mostPressing(agent);
    if (row == nullptr) {
        text += detail == Detail::window ? " " + output.shown(agent.statusText) : " ?";
    } else if (detail == Detail::window) {
        text += " · " + singleLine(row->fullLabel) + " " + row->value;
    } else {
        text += " " + row->figure;
    }
    return {output.styled(styleOf(agent.health), output.shapes().dot) + " " + text,
            2 + displayWidth(text)};
}

std::vector<std::string> rowsOf(const std::vector<Item>& items, std::size_t width) {
    std::vector<std::string> rows;
    std::size_t used = 0;
    for (const Item& item : items) {
        if (rows.empty() || used + columnGap + item.width > width) {
            rows.push_back(item.text);
            used = item.width;
        } else {
            rows.back() += std::string(columnGap, ' ') + item.text;
            used += columnGap + item.width;
        }
    }
    return rows;
}

} // namespace

std::vector<std::string> compactRows(const std::vector<AgentBlockContent>& agents,
                                     const VerdictLine& verdict, const TerminalOutput& output,
                                     const Localization& words) {
    const std::size_t width = output.width();
    const bool isVerdictBrief = displayWidth(verdict.text) > width;
    const std::string& head = isVerdictBrief ? verdict.briefText : verdict.text;
    std::vector<std::string> rows;
    for (const Detail detail : {Detail::window, Detail::figure, Detail::shortName}) {
        std::vector<Item> items;
        for (const AgentBlockContent& agent : agents) {
            items.push_back(itemOf(agent, detail, output, words));
        }
        rows = rowsOf(items, width);
        if (rows.size() < mostRows && displayWidth(head) <= width) {
            rows.insert(rows.begin(), output.styled(TextStyle::strong, head));
            return rows;
        }
        if (detail != Detail::window && rows.size() <= mostRows) {
            return rows;
        }
    }
    // More agents than two rows can name: the most that they can.
    rows.resize(std::min(rows.size(), mostRows));
    return rows;
}

} // namespace vellmark
