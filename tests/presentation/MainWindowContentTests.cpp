#include "AgentNames.h"
#include "presentation/MainWindowContent.h"
#include "support/Matchers.h"

#include <algorithm>

namespace vellmark::tests {
namespace {

using Kind = AgentPage::Kind;

const AgentPage codexPage = AgentPage::provider(codex);

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

VerdictContent verdictOf(const UsageState& state) {
    return overviewPageContent(state, noon, english).verdict;
}

TEST(Overview, SaysWhenItWasReadAndWhatIsWorst) {
    UsageState state = twoAgents();
    OverviewPageContent content = overviewPageContent(state, noon, english);
    EXPECT_THAT(content.head.age, StartsWith("Updated Nov 20, "));
    EXPECT_EQ(content.verdict.tone, UsageHealth::critical);
    EXPECT_EQ(content.verdict.subject, "Claude, Week");
    EXPECT_THAT(content.verdict.text,
                testing::MatchesRegex("runs out in .*, .* before it resets.*"));
    EXPECT_EQ(content.cards.size(), 2U);
    EXPECT_EQ(content.head.refresh.title, "Refresh");
    EXPECT_EQ(content.storage, "");
    state.unwritten = {.kind = StorageTrouble::Kind::failed,
                       .error = std::make_error_code(std::errc::no_space_on_device),
                       .file = "history",
                       .part = {}};
    EXPECT_EQ(overviewPageContent(state, noon, english).storage,
              "Files cannot be written (No space left on the disk); the figures stay visible.");

    state.isRefreshing = true;
    state.lastRefreshCompletedAt.reset();
    content = overviewPageContent(state, noon, english);
    EXPECT_EQ(content.head.age, "Not read yet");
    UsageState first = stateOf({AgentUsageSnapshot{.id = codex}});
    first.lastRefreshCompletedAt.reset();
    EXPECT_EQ(verdictOf(first).text, "No figures yet.");
    first.isRefreshing = true;
    EXPECT_EQ(verdictOf(first).text, "Reading values …");
    EXPECT_EQ(content.head.refresh.title, "Refreshing …");

    EXPECT_TRUE(overviewPageContent(UsageState(), noon, english).noAgents);
    UsageState fine = stateOf({live(codex, {window("session", 22, 300, 87)})});
    const VerdictContent calm = verdictOf(fine);
    EXPECT_EQ(calm.text, "Everything lasts until its reset.");
    EXPECT_EQ(calm.icon, "checkmark");
    fine.snapshots.front().error = UsageProviderError::timeout("Codex");
    EXPECT_EQ(verdictOf(fine).icon, "exclamationmark.triangle.fill")
        << "nothing is checked that could not be read";
}

TEST(AgentPage, ComesBackFromItsStoredForm) {
    EXPECT_EQ(AgentPage::fromStoredForm(codexPage.storedForm()), codexPage);
    for (const Kind kind :
         {Kind::overview, Kind::history, Kind::activity, Kind::settings, Kind::help, Kind::about}) {
        const AgentPage page = AgentPage::of(kind);
        EXPECT_EQ(AgentPage::fromStoredForm(page.storedForm()), page) << page.storedForm();
    }
    EXPECT_EQ(AgentPage::fromStoredForm("cellar"), AgentPage::of(Kind::overview));
}

TEST(AgentNavigationState, GoesBackAndForwardAlongTheWayThatWasTaken) {
    AgentNavigationState navigation;
    const auto at = [&] { return navigation.selection().storedForm(); };
    navigation.goBack();
    navigation.goForward();
    EXPECT_EQ(at(), "overview");
    navigation.select(codexPage);
    navigation.select(codexPage);
    navigation.select(AgentPage::of(Kind::history));
    navigation.goBack();
    EXPECT_EQ(at(), "provider:codex");
    navigation.goBack();
    EXPECT_EQ(at(), "overview");
    navigation.goForward();
    navigation.goForward();
    EXPECT_EQ(at(), "history");
    navigation.goBack();
    navigation.select(AgentPage::of(Kind::settings));
    // Another way was taken.
    navigation.goForward();
    EXPECT_EQ(at(), "settings");
}

TEST(AgentNavigationState, LeadsPastPagesThatAreGone) {
    AgentNavigationState navigation;
    bool isCodexShown = true;
    navigation.isShown = [&](const AgentPage& page) { return page != codexPage || isCodexShown; };
    navigation.select(AgentPage::of(Kind::history));
    navigation.select(codexPage);
    isCodexShown = false;
    navigation.replaceSelection(AgentPage::of(Kind::overview));
    navigation.select(AgentPage::of(Kind::settings));
    navigation.select(codexPage);
    navigation.select(AgentPage::of(Kind::help));
    navigation.goBack();
    EXPECT_EQ(navigation.selection(), AgentPage::of(Kind::settings));
    navigation.goBack();
    EXPECT_EQ(navigation.selection(), AgentPage::of(Kind::overview));
    navigation.goBack();
    EXPECT_EQ(navigation.selection(), AgentPage::of(Kind::history));
}

} // namespace
} // namespace vellmark::tests
