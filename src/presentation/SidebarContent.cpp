#include "presentation/SidebarContent.h"

#include "model/UsageTexts.h"
#include "presentation/AgentBlockContent.h"
#include "presentation/AgentStanding.h"
#include "presentation/UsageRowContent.h"
#include "text/Formatting.h"

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
                      FirstFigure first, const Localization& words) {
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
    return usageValueText(*least, first, words);
}

SidebarItem agentEntry(const AgentUsageSnapshot& snapshot, const UsageState& state, Instant now,
                       const Localization& words) {
    SidebarItem item{.title = agentShortName(snapshot.id, words),
                     .page = AgentPage::provider(snapshot.id)};
    const AgentStanding standing = standingOf(snapshot, state, now);
    item.value = leastText(snapshot, standing, state.firstFigure, words);
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

} // namespace vellmark
