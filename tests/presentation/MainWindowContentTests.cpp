#include "presentation/MainWindowContent.h"
#include "presentation/UsageStateMaker.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace vellmark::tests {
namespace {

using testing::ElementsAre;

const auto codex = AgentProviderID::codex();
const auto claude = AgentProviderID::claude();
const Localization english("en", "en_US", "UTC");

UsageState twoAgents() {
    return stateOf(
        {live(claude, {window("session", 22, 300, 87), window("weekly", 97, 10080, 5040)}),
         live(codex, {window("session", 22, 300, 87)})});
}

TEST(Sidebar, ListsPagesAndShownAgentsInTheirOrder) {
    std::vector<std::string> titles;
    for (const SidebarItem& item : sidebarItems(twoAgents(), noon, english)) {
        titles.push_back((item.isSection ? "# " : "") + item.title);
    }
    EXPECT_THAT(titles, ElementsAre("Overview", "# Agents", "Claude", "Codex", "# Analysis",
                                    "History", "Activity", "Settings", "Help", "About"));
}

TEST(Sidebar, TellsTheLeastThatIsLeft) {
    const std::vector<SidebarItem> items = sidebarItems(twoAgents(), noon, english);
    EXPECT_EQ(items[2].value, "3% left");
    EXPECT_EQ(items[2].badge, UsageHealth::critical);
    EXPECT_EQ(items[2].page, AgentPage::provider(claude));
    EXPECT_EQ(items[3].badge, std::nullopt);
    UsageState swapped = twoAgents();
    std::ranges::reverse(swapped.snapshots[0].windows);
    EXPECT_EQ(sidebarItems(swapped, noon, english)[2].value, "3% left");
    const auto failure = UsageProviderError::other("Odd.");
    EXPECT_EQ(sidebarItems(stateOf({failed(codex, failure)}), noon, english)[2].value, "");
}

TEST(Overview, SaysWhenItWasReadAndWhatIsWorst) {
    UsageState state = twoAgents();
    OverviewContent content = overviewContent(state, noon, english);
    EXPECT_THAT(content.updated, testing::StartsWith("Updated Nov 20, "));
    EXPECT_EQ(content.verdict.tone, UsageHealth::critical);
    EXPECT_EQ(content.verdict.subject, "Claude, Week");
    EXPECT_THAT(content.verdict.text,
                testing::MatchesRegex("runs out in .*, .* before it resets.*"));
    EXPECT_EQ(content.cards.size(), 2U);
    EXPECT_EQ(content.setupHint, "");
    // What is left to set up is said beside it.
    const OverviewContent asking = overviewContent(state, noon, english, true);
    EXPECT_THAT(asking.setupHint, testing::HasSubstr("vellmark setup"));
    EXPECT_EQ(asking.verdict, content.verdict);
    EXPECT_EQ(content.refresh.title, "Refresh");

    state.isRefreshing = true;
    state.lastRefreshCompletedAt.reset();
    content = overviewContent(state, noon, english);
    EXPECT_EQ(content.updated, "Not read yet");
    UsageState first = stateOf({AgentUsageSnapshot{.id = codex}});
    first.lastRefreshCompletedAt.reset();
    EXPECT_EQ(overviewContent(first, noon, english).verdict.text, "No figures yet.");
    first.isRefreshing = true;
    EXPECT_EQ(overviewContent(first, noon, english).verdict.text, "Reading values …");
    EXPECT_EQ(content.refresh.title, "Refreshing …");

    EXPECT_TRUE(overviewContent(UsageState(), noon, english).noAgents);
    UsageState fine = stateOf({live(codex, {window("session", 22, 300, 87)})});
    const VerdictContent calm = overviewContent(fine, noon, english).verdict;
    EXPECT_EQ(calm.text, "Everything lasts until its reset.");
    EXPECT_EQ(calm.icon, "checkmark");
    fine.snapshots.front().error = UsageProviderError::timeout("Codex");
    EXPECT_EQ(overviewContent(fine, noon, english).verdict.icon, "exclamationmark.triangle.fill")
        << "nothing is checked that could not be read";
}

} // namespace
} // namespace vellmark::tests
