#include "presentation/StatusItemContent.h"

#include "model/UsageTexts.h"
#include "presentation/AgentBlockContent.h"
#include "presentation/UsageVerdict.h"
#include "text/Formatting.h"

namespace vellmark {

StatusColorRole statusItemColor(const UsageState& state, Instant now) {
    if (state.snapshots.empty())
        return StatusColorRole::none;
    if (state.isRefreshing)
        return StatusColorRole::refreshing;
    if (!state.lastRefreshCompletedAt)
        return StatusColorRole::none;
    return statusColorRole(worstHealth(state, now));
}

std::string statusItemToolTip(const MenuBarGlyph& glyph, const UsageState& state, Instant now,
                              const Localization& words) {
    const std::string app = words.text("app.name");
    if (!glyph.usedPercent || !glyph.providerID || !glyph.windowID)
        return words.format("statusItem.tooltip", {app, overallStatusText(state, now, words)});
    const std::string agent = agentName(*glyph.providerID, words);
    const std::string window = windowLabel(*glyph.windowID, words, true);
    const std::string used = percentText(*glyph.usedPercent, words);
    if (!glyph.elapsedPercent)
        return words.format("statusItem.tooltip.window.noTime", {app, agent, window, used});
    return words.format("statusItem.tooltip.window",
                        {app, agent, window, used, percentText(*glyph.elapsedPercent, words)});
}

StatusItemContent statusItemContent(const UsageState& state, Instant now,
                                    const Localization& words) {
    StatusItemContent content;
    content.glyph = MenuBarGlyph::compute(state.snapshots, state.enabledProviderIDs, now);
    content.glyphDescription = words.text("app.name");
    content.color = statusItemColor(state, now);
    content.toolTip = statusItemToolTip(content.glyph, state, now, words);
    return content;
}

} // namespace vellmark
