#include "presentation/PopoverContent.h"

#include "model/UsageTexts.h"

#include <algorithm>

namespace vellmark {
namespace {

std::vector<PopoverTabContent> tabContents(const std::vector<AgentBlockContent>& agents,
                                           const Localization& words) {
    if (agents.empty()) {
        return {};
    }
    const std::string overview = words.text("nav.overview");
    std::vector<PopoverTabContent> tabs{
        {.tab = PopoverTab::overview(), .title = overview, .accessibilityText = overview}};
    for (const AgentBlockContent& agent : agents) {
        tabs.push_back({.tab = PopoverTab::agent(agent.id),
                        .title = agent.name,
                        .badge = badgeOf(agent.health),
                        .accessibilityText = agent.accessibilityText});
    }
    return tabs;
}

} // namespace

const AgentBlockContent* PopoverContent::selectedAgent() const {
    const auto found =
        std::find_if(agents.begin(), agents.end(), [&](const AgentBlockContent& agent) {
            return selectedTab.provider == agent.id;
        });
    return found != agents.end() ? &*found : nullptr;
}

NoAgentsContent noAgentsContent(const Localization& words) {
    return {.icon = "eye.slash",
            .title = words.text("agents.none.title"),
            .text = words.text("agents.none.text"),
            .buttonTitle = words.text("agents.none.openSettings")};
}

PopoverContent popoverContent(const UsageState& state, std::string_view storedTab, Instant now,
                              const Localization& words) {
    PopoverContent content;
    content.title = words.text("app.name");
    content.statusLine = verdictLine(state, now, words);
    content.isRefreshing = state.isRefreshing;
    content.refresh = {"", "arrow.clockwise", words.text("popover.refresh.help")};
    content.openWindow = {words.text("popover.openWindow"), "macwindow", ""};
    content.about = {words.text("popover.about"), "info.circle", ""};
    content.quit = {words.text("popover.quit"), "", ""};
    content.openPage = {words.text("popover.openPage"), "chevron.right", ""};

    std::vector<AgentProviderID> shown;
    for (const AgentUsageSnapshot& snapshot : state.snapshots) {
        shown.push_back(snapshot.id);
        content.agents.push_back(agentBlockContent(snapshot, state, now, words));
    }
    content.tabs = tabContents(content.agents, words);
    content.selectedTab = PopoverTab::fromStoredForm(storedTab, shown);
    if (shown.empty()) {
        content.noAgents = noAgentsContent(words);
    }
    return content;
}

} // namespace vellmark
