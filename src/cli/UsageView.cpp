#include "cli/UsageView.h"

#include "cli/DisplayWidth.h"
#include "probes/ProviderRegistry.h"
#include "text/TerminalText.h"

#include <algorithm>
#include <cmath>

namespace vellmark {
namespace {

constexpr std::size_t widest = 100;
constexpr std::size_t indent = 2;
constexpr std::size_t gap = 2;
constexpr std::size_t widestLabel = 28;
constexpr std::size_t widestBar = 24;
constexpr std::size_t leastBar = 8;

std::size_t barColumn(std::size_t label) {
    return indent + label + gap;
}

/// What the user can type to get out of a failure; empty when there is nothing.
std::string wayOutCommand(const AgentBlockContent& agent) {
    switch (agent.failure->wayOut) {
    case WayOut::logIn:
    case WayOut::install:
        return "vellmark setup " + agent.id.rawValue;
    default:
        return {};
    }
}

} // namespace

TextStyle styleOf(UsageHealth health) {
    switch (health) {
    case UsageHealth::healthy:
        return TextStyle::healthy;
    case UsageHealth::attention:
        return TextStyle::attention;
    case UsageHealth::critical:
        return TextStyle::critical;
    case UsageHealth::unavailable:
        break;
    }
    return TextStyle::dim;
}

UsageView::UsageView(const TerminalOutput& output, const Localization& words)
    : output_(output), words_(words) {}

std::string UsageView::text(const std::vector<AgentBlockContent>& agents) const {
    const Layout layout = layoutFor(agents);
    std::string text;
    for (const AgentBlockContent& agent : agents) {
        if (!text.empty())
            text += "\n";
        text += head(agent, layout);
        for (const UsageRowContent& window : agent.rows)
            text += row(window, layout);
        for (const BalanceRowContent& entry : agent.balances)
            text += balance(entry, layout);
        for (const std::string& note : agent.notes)
            text += paragraph(note, indent, TextStyle::dim, layout);
        if (agent.failure)
            text += failure(agent, layout);
    }
    return text;
}

UsageView::Layout UsageView::layoutFor(const std::vector<AgentBlockContent>& agents) const {
    Layout layout{.width = std::min(output_.width(), widest)};
    std::size_t reset = 0;
    for (const AgentBlockContent& agent : agents) {
        for (const UsageRowContent& row : agent.rows) {
            layout.label = std::max(layout.label, displayWidth(singleLine(row.fullLabel)));
            layout.value = std::max(layout.value, displayWidth(row.value));
            reset = std::max(reset, displayWidth(row.reset));
        }
        for (const BalanceRowContent& entry : agent.balances)
            layout.label = std::max(layout.label, displayWidth(singleLine(entry.label)));
    }
    layout.label = std::min(layout.label, widestLabel);

    const std::size_t figures = barColumn(layout.label) + gap + layout.value;
    const std::size_t whole = figures + gap + reset;
    layout.resetOnOwnLine = whole + leastBar > layout.width;
    const std::size_t taken = layout.resetOnOwnLine ? figures : whole;
    const std::size_t room = layout.width > taken ? layout.width - taken : 0;
    layout.bar = room < leastBar ? 0 : std::min(room, widestBar);
    if (layout.bar == 0) {
        const std::size_t beside = indent + gap + layout.value;
        layout.label = std::min(layout.label, layout.width > beside ? layout.width - beside : 4);
    }
    return layout;
}

std::string UsageView::head(const AgentBlockContent& agent, const Layout& layout) const {
    std::string details;
    for (const std::string& part : {singleLine(agent.plan), singleLine(agent.account)}) {
        if (!part.empty())
            details += (details.empty() ? "" : " · ") + part;
    }
    const std::string name = cutToWidth(agent.name, layout.width);
    std::string line = output_.styled(TextStyle::strong, name);
    std::size_t used = displayWidth(name);
    const std::string status = "● " + agent.statusText;
    if (used + gap + displayWidth(status) <= layout.width) {
        line += "  " + output_.styled(styleOf(agent.health), "●") + status.substr(status.find(' '));
        used += gap + displayWidth(status);
    }
    if (details.empty())
        return line + "\n";
    if (used + gap + displayWidth(details) <= layout.width)
        return line + "  " + output_.styled(TextStyle::dim, details) + "\n";
    return line + "\n" + paragraph(details, indent, TextStyle::dim, layout);
}

std::string UsageView::row(const UsageRowContent& row, const Layout& layout) const {
    const std::string blanks(gap, ' ');
    std::string line(indent, ' ');
    line += padded(cutToWidth(singleLine(row.fullLabel), layout.label), layout.label) + blanks;
    if (layout.bar > 0)
        line += bar(row.bar, layout.bar) + blanks;
    line += output_.styled(TextStyle::strong, padded(row.value, layout.value, Alignment::right));
    const std::size_t column = layout.bar > 0 ? barColumn(layout.label) : indent + gap;
    if (layout.resetOnOwnLine)
        line += "\n" + paragraph(row.reset, column, TextStyle::dim, layout);
    else
        line += blanks + output_.styled(TextStyle::dim, row.reset) + "\n";
    if (row.forecast) {
        const bool warns = row.forecast->tone != UsageHealth::healthy;
        const std::string mark = warns ? "! " : "";
        const bool fits = column + displayWidth(mark + row.forecast->text) <= layout.width;
        line += paragraph(mark + (fits ? row.forecast->text : row.forecast->briefText), column,
                          warns ? styleOf(row.forecast->tone) : TextStyle::dim, layout);
    }
    return line;
}

std::string UsageView::balance(const BalanceRowContent& balance, const Layout& layout) const {
    std::string text = singleLine(balance.value);
    if (!balance.detail.empty())
        text += (text.empty() ? "" : " ") + singleLine(balance.detail);
    return std::string(indent, ' ') +
           padded(cutToWidth(singleLine(balance.label), layout.label), layout.label) +
           std::string(gap, ' ') + text + "\n";
}

std::string UsageView::failure(const AgentBlockContent& agent, const Layout& layout) const {
    std::string text =
        paragraph(singleLine(agent.failure->reason), indent, TextStyle::plain, layout);
    if (const std::string command = wayOutCommand(agent); !command.empty())
        text +=
            paragraph(words_.format("cli.usage.wayOut", {command}), indent, TextStyle::dim, layout);
    return text;
}

std::string UsageView::bar(const UsageBarContent& bar, std::size_t width) const {
    const auto cells = [&](double share) {
        return static_cast<std::size_t>(
            std::lround(std::clamp(share, 0.0, 1.0) * static_cast<double>(width)));
    };
    std::size_t filled = cells(bar.filledShare);
    // Something left shows as something, and only a full window as full.
    if (bar.filledShare > 0)
        filled = std::max<std::size_t>(filled, 1);
    if (bar.filledShare < 1)
        filled = std::min(filled, width - 1);
    const std::size_t mark = bar.paceMark ? std::min(cells(*bar.paceMark), width - 1) : width;
    std::string text;
    std::string track;
    for (std::size_t cell = 0; cell < width; ++cell) {
        if (cell < filled)
            text += cell == mark ? "╋" : "━";
        else
            track += cell == mark ? "┼" : "─";
    }
    return output_.styled(styleOf(bar.health), text) + output_.styled(TextStyle::dim, track);
}

std::string UsageView::paragraph(const std::string& text, std::size_t column, TextStyle style,
                                 const Layout& layout) const {
    std::string lines;
    const std::size_t room = layout.width > column ? layout.width - column : 1;
    for (const std::string& line : wrapped(text, room))
        lines += std::string(column, ' ') + output_.styled(style, line) + "\n";
    return lines;
}

} // namespace vellmark
