#include "presentation/MainWindowContent.h"

#include "model/UsageTexts.h"
#include "presentation/MenuBarGlyph.h"
#include "presentation/UsageVerdict.h"
#include "text/Formatting.h"

#include <algorithm>
#include <limits>

namespace vellmark {
namespace {

SidebarItem section(std::string_view key, const Localization& words) {
    SidebarItem item{.isSection = true, .title = words.text(key)};
    item.accessibilityText = item.title;
    return item;
}

SidebarItem entry(std::string_view key, AgentPage::Kind kind, std::string icon,
                  const Localization& words) {
    SidebarItem item{
        .title = words.text(key), .page = AgentPage::of(kind), .icon = std::move(icon)};
    item.accessibilityText = item.title;
    return item;
}

SidebarItem agentEntry(const AgentUsageSnapshot& snapshot, Instant now, const Localization& words) {
    SidebarItem item{.title = agentShortName(snapshot.id, words),
                     .page = AgentPage::provider(snapshot.id)};
    double least = std::numeric_limits<double>::infinity();
    for (const UsageWindow& window : snapshot.windows)
        least = std::min(least, std::max(remainingPercent(window), 0.0));
    if (!snapshot.windows.empty())
        item.value = words.format("usage.remaining", {percentText(least, words)});
    const UsageHealth grade = health(snapshot, now);
    item.badge = badgeOf(grade);
    item.accessibilityText =
        words.format("popover.agent.accessibility", {item.title, healthText(grade, words)});
    return item;
}

/// When a window runs out and how long that is before its reset; else what is left of it.
std::string verdictSentence(const UsageWindow& window, std::span<const UsagePoint> recent,
                            Instant now, const Localization& words) {
    const std::optional<Forecast> outlook = forecast(window, now, recent);
    if (!outlook || !outlook->emptyAt || *outlook->emptyAt <= now || !window.resetsAt) {
        const UsageRowContent row = usageRowContent(window, false, recent, now, words);
        return words.format("overview.verdict.left", {row.figure, row.reset});
    }
    const Instant reset = *window.resetsAt;
    return words.format(
        isSameDay(reset, now, words) ? "overview.verdict.runsOut" : "overview.verdict.runsOutOn",
        {forecastDurationText(*outlook->emptyAt - now, words),
         roughDurationText(reset - *outlook->emptyAt, words), instantText(reset, now, words)});
}

/// A check mark only where every agent was read.
std::string verdictIcon(const UsageState& state, UsageHealth worst) {
    const bool isUnreadable =
        std::any_of(state.snapshots.begin(), state.snapshots.end(),
                    [](const AgentUsageSnapshot& snapshot) { return snapshot.error.has_value(); });
    if (isUnreadable || worst == UsageHealth::attention || worst == UsageHealth::critical)
        return "exclamationmark.triangle.fill";
    return worst == UsageHealth::healthy ? "checkmark" : "info.circle";
}

/// The worst window in a sentence, or that nothing is wrong.
VerdictContent verdict(const UsageState& state, Instant now, const Localization& words) {
    const UsageHealth worst = worstHealth(state, now);
    VerdictContent content{
        .tone = worst,
        .icon = verdictIcon(state, worst),
        .text = words.format("overview.verdict.sentence", {verdictText(state, now, words)})};
    if (worst != UsageHealth::attention && worst != UsageHealth::critical) {
        return content;
    }
    const MenuBarGlyph glyph =
        MenuBarGlyph::compute(state.snapshots, state.enabledProviderIDs, now);
    for (const AgentUsageSnapshot& snapshot : state.snapshots) {
        for (const UsageWindow& window : snapshot.windows) {
            if (glyph.providerID != snapshot.id || glyph.windowID != window.id)
                continue;
            content.subject =
                words.format("overview.verdict.subject", {agentShortName(snapshot.id, words),
                                                          windowLabel(window.id, words, true)});
            content.text =
                verdictSentence(window, state.recentPointsOf(snapshot.id, window.id), now, words);
        }
    }
    return content;
}

} // namespace

std::vector<SidebarItem> sidebarItems(const UsageState& state, Instant now,
                                      const Localization& words) {
    using Kind = AgentPage::Kind;
    std::vector<SidebarItem> items;
    items.push_back(entry("nav.overview", Kind::overview, "square.grid.2x2", words));
    items.push_back(section("nav.section.agents", words));
    for (const AgentUsageSnapshot& snapshot : state.snapshots)
        items.push_back(agentEntry(snapshot, now, words));
    items.push_back(section("nav.section.analysis", words));
    items.push_back(entry("nav.history", Kind::history, "chart.xyaxis.line", words));
    items.push_back(entry("nav.activity", Kind::activity, "list.bullet.rectangle", words));
    items.push_back(entry("nav.settings", Kind::settings, "gearshape", words));
    items.push_back(entry("nav.help", Kind::help, "questionmark.circle", words));
    items.push_back(entry("nav.about", Kind::about, "info.circle", words));
    return items;
}

OverviewContent overviewContent(const UsageState& state, Instant now, const Localization& words,
                                bool asksForSetup) {
    OverviewContent content;
    content.title = words.text("nav.overview");
    content.subtitle = words.text("overview.subtitle");
    content.updated =
        state.lastRefreshCompletedAt
            ? words.format("overview.updated", {momentText(*state.lastRefreshCompletedAt, words)})
            : words.text("overview.notUpdated");
    content.isRefreshing = state.isRefreshing;
    content.refresh = {words.text(state.isRefreshing ? "header.refreshing" : "header.refresh"),
                       "arrow.clockwise", ""};
    content.refreshTitles = {words.text("header.refresh"), words.text("header.refreshing")};
    content.verdict = verdict(state, now, words);
    if (asksForSetup)
        content.setupHint = words.text("overview.firstRun");
    for (const AgentUsageSnapshot& snapshot : state.snapshots)
        content.cards.push_back(
            agentBlockContent(snapshot, state, now, words, "overview.loadingQuotas"));
    if (state.snapshots.empty())
        content.noAgents = noAgentsContent(words);
    return content;
}

} // namespace vellmark
