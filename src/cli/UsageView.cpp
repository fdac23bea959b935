#include "cli/UsageView.h"

#include "cli/DisplayWidth.h"
#include "probes/ProviderRegistry.h"
#include "text/TerminalText.h"

#include <algorithm>
#include <cmath>

namespace vellmark {
namespace {

constexpr std::size_t leastBar = 12;
/// Where the label stands above the bar, which has the line almost for itself.
constexpr std::size_t narrowestBar = 4;
constexpr std::size_t eighths = 8;

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

std::string withoutEnd(std::string lines) {
    lines.pop_back();
    return lines;
}

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        lines.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return lines;
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
        text += (text.empty() ? "" : "\n") + block(agent, layout);
    }
    return text;
}

std::vector<std::vector<std::string>>
UsageView::lines(const std::vector<AgentBlockContent>& agents) const {
    const Layout layout = layoutFor(agents);
    std::vector<std::vector<std::string>> lines;
    for (const AgentBlockContent& agent : agents) {
        lines.push_back(linesOf(block(agent, layout)));
    }
    return lines;
}

std::size_t UsageView::Layout::barColumn() const {
    return form == Form::labelAbove ? 2 * pageIndent : pageIndent + label + columnGap;
}

UsageView::Layout UsageView::layoutFor(const std::vector<AgentBlockContent>& agents) const {
    Layout layout{.width = output_.width()};
    std::size_t reset = 0;
    for (const AgentBlockContent& agent : agents) {
        for (const UsageRowContent& row : agent.rows) {
            layout.label = std::max(layout.label, displayWidth(singleLine(row.fullLabel)));
            layout.value = std::max(layout.value, displayWidth(row.value));
            reset = std::max(reset, displayWidth(row.reset));
        }
        for (const BalanceRowContent& entry : agent.balances) {
            layout.label = std::max(layout.label, displayWidth(singleLine(entry.label)));
        }
    }
    const auto roomBeside = [&](std::size_t figures) {
        const std::size_t taken = layout.barColumn() + columnGap + figures;
        return layout.width > taken ? layout.width - taken : 0;
    };
    std::size_t room = roomBeside(layout.value + columnGap + reset);
    if (room < leastBar) {
        layout.form = Form::resetBelow;
        room = roomBeside(layout.value);
    }
    if (room < leastBar) {
        layout.form = Form::labelAbove;
        room = roomBeside(layout.value);
    }
    layout.bar = room < narrowestBar ? 0 : room;
    return layout;
}

std::string UsageView::block(const AgentBlockContent& agent, const Layout& layout) const {
    std::string text = head(agent, layout);
    for (const UsageRowContent& window : agent.rows) {
        text += row(window, layout);
    }
    for (const BalanceRowContent& entry : agent.balances) {
        text += balance(entry, layout);
    }
    for (const std::string& note : agent.notes) {
        text += paragraph(note, pageIndent, TextStyle::dim, layout);
    }
    if (agent.failure) {
        text += failure(agent, layout);
    }
    return text;
}

std::string UsageView::head(const AgentBlockContent& agent, const Layout& layout) const {
    const std::string name = agentName(agent.id, words_);
    std::string text;
    for (const std::string& line : wrapped(name, layout.width)) {
        text += (text.empty() ? "" : "\n") + output_.styled(TextStyle::strong, line);
    }
    std::size_t used = displayWidth(name);
    /// `part` has `width` columns.
    const auto append = [&](const std::string& part, std::size_t width) {
        const bool fits = used + columnGap + width <= layout.width;
        text += (fits ? std::string(columnGap, ' ') : "\n" + std::string(pageIndent, ' ')) + part;
        used = (fits ? used + columnGap : pageIndent) + width;
    };
    const std::string status = output_.shown(agent.statusText);
    append(output_.styled(styleOf(agent.health), output_.shapes().dot) + " " + status,
           2 + displayWidth(status));
    std::vector<std::string> details{singleLine(agent.plan), singleLine(agent.account)};
    std::erase(details, "");
    if (details.size() == 2) {
        const std::string both = details[0] + " · " + details[1];
        if (pageIndent + displayWidth(both) <= layout.width) {
            details = {both};
        }
    }
    for (const std::string& detail : details) {
        if (pageIndent + displayWidth(detail) <= layout.width) {
            append(output_.styled(TextStyle::dim, detail), displayWidth(detail));
        } else {
            text += "\n" + withoutEnd(paragraph(detail, pageIndent, TextStyle::dim, layout));
        }
    }
    return text + "\n";
}

std::string UsageView::label(const std::string& text, const Layout& layout, TextStyle style) const {
    if (layout.form == Form::labelAbove) {
        return paragraph(singleLine(text), pageIndent, style, layout) +
               std::string(layout.barColumn(), ' ');
    }
    return std::string(pageIndent, ' ') +
           output_.styled(style, padded(singleLine(text), layout.label)) +
           std::string(columnGap, ' ');
}

std::string UsageView::row(const UsageRowContent& row, const Layout& layout) const {
    const std::string blanks(columnGap, ' ');
    std::string text = label(row.fullLabel, layout);
    if (layout.bar > 0) {
        text += bar(row.bar, layout.bar) + blanks;
    }
    text += output_.styled(TextStyle::strong, padded(row.value, layout.value, Alignment::right));
    const TextStyle resetStyle = row.isUsedUp ? TextStyle::critical : TextStyle::dim;
    if (layout.form == Form::line) {
        text += blanks + output_.styled(resetStyle, row.reset) + "\n";
    } else {
        text += "\n" + paragraph(row.reset, layout.barColumn(), resetStyle, layout);
    }
    if (!row.forecast) {
        return text;
    }
    const UsageHealth tone = row.forecast->tone;
    const std::size_t column = layout.barColumn();
    const bool fits = column + 2 + displayWidth(row.forecast->text) <= layout.width;
    const std::string& forecast = fits ? row.forecast->text : row.forecast->briefText;
    return text + (tone == UsageHealth::healthy
                       ? paragraph(forecast, column, TextStyle::dim, layout)
                       : warning(forecast, column, tone, layout));
}

std::string UsageView::balance(const BalanceRowContent& balance, const Layout& layout) const {
    std::string text = singleLine(balance.value);
    if (!balance.detail.empty()) {
        text += (text.empty() ? "" : " ") + singleLine(balance.detail);
    }
    // The first line begins where the label has ended.
    const std::string figures =
        paragraph(text, layout.barColumn(), TextStyle::plain, layout).substr(layout.barColumn());
    return label(balance.label, layout, balance.warns ? TextStyle::critical : TextStyle::plain) +
           figures;
}

std::string UsageView::failure(const AgentBlockContent& agent, const Layout& layout) const {
    std::string text =
        warning(singleLine(agent.failure->reason), pageIndent, UsageHealth::critical, layout);
    if (const std::string command = wayOutCommand(agent); !command.empty()) {
        text += paragraph(words_.format("cli.usage.wayOut", {command}), 2 * pageIndent,
                          TextStyle::dim, layout);
    }
    return text;
}

std::string UsageView::bar(const UsageBarContent& bar, std::size_t width) const {
    const Shapes& shapes = output_.shapes();
    const std::size_t parts = shapes.eighths.front().empty() ? 1 : eighths;
    const auto cells = static_cast<double>(width);
    auto filled = static_cast<std::size_t>(
        std::lround(std::clamp(bar.filledShare, 0.0, 1.0) * cells * static_cast<double>(parts)));
    // Something shows as something, and only a full window as full.
    if (bar.filledShare > 0) {
        filled = std::max<std::size_t>(filled, 1);
    }
    if (bar.filledShare < 1) {
        filled = std::min(filled, width * parts - 1);
    }
    const std::size_t mark =
        bar.paceMark ? std::min(static_cast<std::size_t>(
                                    std::lround(std::clamp(*bar.paceMark, 0.0, 1.0) * cells)),
                                width - 1)
                     : width;
    std::string text;
    std::string run;
    TextStyle runStyle = TextStyle::plain;
    const auto add = [&](TextStyle style, std::string_view cell) {
        if (style != runStyle) {
            text += output_.styled(runStyle, run);
            run.clear();
            runStyle = style;
        }
        run += cell;
    };
    const TextStyle fill = bar.isStale ? TextStyle::dim : styleOf(bar.health);
    for (std::size_t cell = 0; cell < width; ++cell) {
        const std::size_t left = filled > cell * parts ? filled - cell * parts : 0;
        if (cell == mark) {
            add(TextStyle::strong, shapes.mark);
        } else if (left >= parts) {
            add(fill, shapes.fill);
        } else if (left > 0) {
            add(fill, shapes.eighths[left - 1]);
        } else {
            add(TextStyle::dim, shapes.track);
        }
    }
    return text + output_.styled(runStyle, run);
}

std::string UsageView::paragraph(const std::string& text, std::size_t column, TextStyle style,
                                 const Layout& layout) const {
    std::string lines;
    const std::size_t room = layout.width > column ? layout.width - column : 1;
    for (const std::string& line : wrapped(text, room)) {
        lines += std::string(column, ' ') + output_.styled(style, line) + "\n";
    }
    return lines;
}

std::string UsageView::warning(const std::string& text, std::size_t column, UsageHealth tone,
                               const Layout& layout) const {
    constexpr std::size_t markWidth = 2;
    const std::string lines = paragraph(text, column + markWidth, TextStyle::plain, layout);
    return std::string(column, ' ') + output_.styled(styleOf(tone), "!") + " " +
           lines.substr(column + markWidth);
}

} // namespace vellmark
