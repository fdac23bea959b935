#include "presentation/MainWindowContent.h"

#include "model/UsageTexts.h"
#include "presentation/AgentStanding.h"
#include "presentation/UsageVerdict.h"
#include "text/Formatting.h"

#include <algorithm>

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

/// The least that is left of the windows that count.
std::string leastText(const AgentUsageSnapshot& snapshot, const AgentStanding& standing,
                      const Localization& words) {
    const UsageWindow* least = nullptr;
    for (std::size_t index = 0; index < snapshot.windows.size(); ++index) {
        const UsageWindow& window = snapshot.windows[index];
        if (standing.windows[index].health != UsageHealth::unavailable &&
            (!least || remainingPercent(window) < remainingPercent(*least))) {
            least = &window;
        }
    }
    if (!least) {
        return standing.isDue() ? words.text("health.due") : std::string();
    }
    if (isUsedUp(*least)) {
        return words.text("usage.usedUp");
    }
    return words.format("usage.remaining", {percentText(remainingPercent(*least), words)});
}

SidebarItem agentEntry(const AgentUsageSnapshot& snapshot, const UsageState& state, Instant now,
                       const Localization& words) {
    SidebarItem item{.title = agentShortName(snapshot.id, words),
                     .page = AgentPage::provider(snapshot.id)};
    const AgentStanding standing = standingOf(snapshot, state, now);
    item.value = leastText(snapshot, standing, words);
    item.badge = badgeOf(standing.health);
    const std::string health =
        standing.isDue() ? words.text("health.due") : healthText(standing.health, words);
    item.accessibilityText = words.format("popover.agent.accessibility", {item.title, health});
    const std::string age = ageText(snapshot, standing, now, words);
    if (!item.value.empty() && !age.empty()) {
        item.help = words.format("sidebar.old", {item.value, age});
        item.accessibilityText += ". " + item.help;
        item.value = briefAgeText(snapshot, standing, now, words);
    }
    return item;
}

/// Abbreviations and what goes on have a stop of their own.
std::string sentence(const std::string& text, const Localization& words) {
    return text.ends_with('.') || text.ends_with("…")
               ? text
               : words.format("overview.verdict.sentence", {text});
}

/// When a window runs out and how long that is before its reset, or that it is used up; else what
/// is left of it.
std::string verdictSentence(const UsageWindow& window, const WindowStanding& standing,
                            std::span<const UsagePoint> recent, Instant now,
                            const Localization& words) {
    if (standing.kind == WindowStanding::Kind::usedUp) {
        return window.resetsAt ? words.format("overview.verdict.usedUpUntil",
                                              {instantText(*window.resetsAt, now, words)})
                               : words.text("overview.verdict.usedUp");
    }
    const std::optional<Forecast> outlook = forecast(window, standing.judgedAt, recent);
    if (!outlook || !outlook->emptyAt || *outlook->emptyAt <= now || !window.resetsAt) {
        const UsageRowContent row = usageRowContent(window, standing, recent, now, words);
        return words.format("overview.verdict.left", {row.figure, row.reset});
    }
    const Instant reset = *window.resetsAt;
    return words.format(isSameDay(reset, now, words) ? "overview.verdict.runsOut"
                                                     : "overview.verdict.runsOutOn",
                        {forecastDurationText(*outlook->emptyAt - now, words),
                         roughDurationText(reset - *outlook->emptyAt, words, SpanForm::alone),
                         instantText(reset, now, words)});
}

/// A check mark only where every agent was read lately.
std::string verdictIcon(const UsageState& state, UsageHealth worst, Instant now) {
    const bool isUnreadable =
        std::ranges::any_of(state.snapshots, [](const AgentUsageSnapshot& snapshot) {
            return snapshot.error.has_value();
        });
    if (isUnreadable || worst == UsageHealth::attention || worst == UsageHealth::critical) {
        return "exclamationmark.triangle.fill";
    }
    const bool isOld =
        std::ranges::any_of(state.snapshots, [&](const AgentUsageSnapshot& snapshot) {
            return standingOf(snapshot, state, now).isOld;
        });
    return worst == UsageHealth::healthy && !isOld ? "checkmark" : "info.circle";
}

/// The worst window in a sentence, or that nothing is wrong.
VerdictContent verdict(const UsageState& state, Instant now, const Localization& words) {
    const UsageHealth worst = worstHealth(state, now);
    VerdictContent content{.tone = worst,
                           .icon = verdictIcon(state, worst, now),
                           .text = sentence(verdictText(state, now, words), words)};
    const std::optional<PressingWindow> pressing = mostPressingWindow(state, now);
    if ((worst != UsageHealth::attention && worst != UsageHealth::critical) || !pressing) {
        return content;
    }
    const AgentUsageSnapshot& snapshot = *pressing->snapshot;
    const UsageWindow& window = *pressing->window;
    content.subject = words.format("overview.verdict.subject", {agentShortName(snapshot.id, words),
                                                                windowLabel(window, words, true)});
    content.text = verdictSentence(window, pressing->standing,
                                   state.recentPointsOf(snapshot.id, window.id), now, words);
    if (const std::string age = ageText(snapshot, pressing->standing, now, words); !age.empty()) {
        content.text = words.format("overview.verdict.aged", {content.text, sentence(age, words)});
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
    for (const AgentUsageSnapshot& snapshot : state.snapshots) {
        items.push_back(agentEntry(snapshot, state, now, words));
    }
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
    if (asksForSetup) {
        content.setupHint = words.text("overview.firstRun");
    }
    for (const AgentUsageSnapshot& snapshot : state.snapshots) {
        content.cards.push_back(
            agentBlockContent(snapshot, state, now, words, "overview.loadingQuotas"));
    }
    if (state.snapshots.empty()) {
        content.noAgents = noAgentsContent(words);
    }
    return content;
}

} // namespace vellmark
