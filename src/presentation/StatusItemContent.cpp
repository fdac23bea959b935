#include "presentation/StatusItemContent.h"

#include "model/UsageTexts.h"
#include "presentation/AgentBlockContent.h"
#include "presentation/AgentStanding.h"
#include "presentation/UsageRowContent.h"
#include "presentation/UsageVerdict.h"
#include "text/Formatting.h"

namespace vellmark {

StatusColorRole statusItemColor(const UsageState& state, Instant now) {
    if (state.snapshots.empty()) {
        return StatusColorRole::none;
    }
    if (state.isRefreshing) {
        return StatusColorRole::refreshing;
    }
    if (!state.lastRefreshCompletedAt) {
        return StatusColorRole::none;
    }
    return statusColorRole(worstHealth(state, now));
}

namespace {

/// With the age of the window that the glyph means, where its figures are old.
std::string withAge(const std::string& text, const MenuBarGlyph& glyph, const UsageState& state,
                    Instant now, const Localization& words) {
    for (const AgentUsageSnapshot& snapshot : state.snapshots) {
        if (snapshot.id != glyph.providerID) {
            continue;
        }
        const AgentStanding standing = standingOf(snapshot, state, now);
        for (std::size_t index = 0; index < snapshot.windows.size(); ++index) {
            if (snapshot.windows[index].id != glyph.windowID) {
                continue;
            }
            const std::string age = ageText(snapshot, standing.windows[index], now, words);
            return age.empty() ? text : words.format("statusItem.tooltip.aged", {text, age});
        }
    }
    return text;
}

} // namespace

std::string statusItemToolTip(const MenuBarGlyph& glyph, const UsageState& state, Instant now,
                              const Localization& words) {
    const std::string app = words.text("app.name");
    if (!glyph.usedPercent || !glyph.providerID || !glyph.windowID) {
        return words.format("statusItem.tooltip", {app, overallStatusText(state, now, words)});
    }
    const std::string agent = agentName(*glyph.providerID, words);
    const UsageWindow* const shown = state.window(*glyph.providerID, *glyph.windowID);
    const std::string window = shown != nullptr ? windowLabel(*shown, words, true)
                                                : windowLabel(*glyph.windowID, words, true);
    const std::string used = percentText(*glyph.usedPercent, words);
    const std::string text =
        glyph.elapsedPercent
            ? words.format("statusItem.tooltip.window",
                           {app, agent, window, used, percentText(*glyph.elapsedPercent, words)})
            : words.format("statusItem.tooltip.window.noTime", {app, agent, window, used});
    return withAge(text, glyph, state, now, words);
}

std::string leastLeftFigure(const UsageState& state, Instant now, const Localization& words) {
    const UsageWindow* least = nullptr;
    for (const AgentUsageSnapshot& snapshot : state.snapshots) {
        const AgentStanding standing = standingOf(snapshot, state, now);
        for (std::size_t index = 0; index < snapshot.windows.size(); ++index) {
            const UsageWindow& window = snapshot.windows[index];
            if (standing.windows[index].health != UsageHealth::unavailable &&
                (least == nullptr || window.usedPercent > least->usedPercent)) {
                least = &window;
            }
        }
    }
    return least != nullptr ? usageFigureText(*least, state.firstFigure, words) : std::string();
}

StatusItemContent statusItemContent(const UsageState& state, Instant now, const Localization& words,
                                    StatusFigure figure) {
    StatusItemContent content;
    content.glyph = MenuBarGlyph::compute(state.snapshots, state.enabledProviderIDs, now);
    content.glyphDescription = words.text("app.name");
    content.color = statusItemColor(state, now);
    content.toolTip = statusItemToolTip(content.glyph, state, now, words);
    if (figure == StatusFigure::leastLeft) {
        content.figure = leastLeftFigure(state, now, words);
    }
    return content;
}

} // namespace vellmark
