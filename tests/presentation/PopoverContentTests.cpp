#include "presentation/PopoverContent.h"
#include "presentation/UsageStateMaker.h"

#include <gmock/gmock.h>

namespace vellmark::tests {
namespace {

using testing::ElementsAre;
using State = AgentBlockContent::State;

const auto codex = AgentProviderID::codex();
const auto claude = AgentProviderID::claude();
const auto antigravity = AgentProviderID::antigravity();
const Localization english("en", "en_US", "UTC");
const Localization german("de", "de_DE", "UTC");
constexpr double fiveHours = 300;
constexpr double week = 7 * 24 * 60;

PopoverContent contentOf(const UsageState& state, std::string_view tab = "overview",
                         const Localization& words = english) {
    return popoverContent(state, tab, noon, words);
}

UsageState threeAgents() {
    return stateOf({live(codex, {window("session", 22, fiveHours, 87)}),
                    live(claude, {window("session", 54, fiveHours, 132),
                                  window("fable-weekly", 84, week, 0.26 * week)}),
                    live(antigravity, {window("pool:gemini|5h", 93, fiveHours, 87)})});
}

TEST(PopoverTab, SurvivesInItsStoredForm) {
    const std::vector<AgentProviderID> shown{codex, AgentProviderID("a:b")};
    for (const PopoverTab& tab : {PopoverTab::overview(), PopoverTab::agent(codex),
                                  PopoverTab::agent(AgentProviderID("a:b"))})
        EXPECT_EQ(PopoverTab::fromStoredForm(tab.storedForm(), shown), tab);
    for (const char* other : {"provider:claude", "provider:", "codex", "", "Provider:codex"})
        EXPECT_EQ(PopoverTab::fromStoredForm(other, shown), PopoverTab::overview()) << other;
}

TEST(PopoverContent, OpensOnTheStoredTabOfAShownAgent) {
    const PopoverContent content = contentOf(threeAgents(), "provider:claude");
    ASSERT_NE(content.selectedAgent(), nullptr);
    EXPECT_EQ(content.selectedAgent()->id, claude);
    EXPECT_EQ(contentOf(threeAgents()).selectedAgent(), nullptr);
}

TEST(PopoverContent, HasATabForEachAgentWithABadgeForWhatPresses) {
    const PopoverContent content = contentOf(threeAgents());
    std::vector<std::string> titles;
    std::vector<std::optional<UsageHealth>> badges;
    for (const PopoverTabContent& tab : content.tabs) {
        titles.push_back(tab.title);
        badges.push_back(tab.badge);
    }
    EXPECT_THAT(titles, ElementsAre("Overview", "Codex", "Claude", "Antigravity"));
    EXPECT_THAT(badges, ElementsAre(std::nullopt, std::nullopt, UsageHealth::attention,
                                    UsageHealth::critical));
}

TEST(PopoverContent, SaysWhatIsWorstAndWhenItWasRead) {
    EXPECT_EQ(contentOf(threeAgents()).statusLine.text,
              "Antigravity critical, Claude running low · read at 1:46 PM");
    EXPECT_EQ(contentOf(threeAgents(), "overview", german).statusLine.text,
              "Antigravity kritisch, Claude wird knapp · gelesen um 13:46");

    const UsageWindow fine = window("session", 22, fiveHours, 87);
    EXPECT_EQ(contentOf(stateOf({live(codex, {fine})})).statusLine.text,
              "Everything lasts until its reset · read at 1:46 PM");
    // A little short of the reset is no cause for alarm, but no promise either.
    const UsageWindow tight = window("session", 73, fiveHours, 87);
    EXPECT_EQ(contentOf(stateOf({live(codex, {tight})})).statusLine.text,
              "Everything healthy · read at 1:46 PM");

    const auto missing = UsageProviderError::executableMissing("codex");
    EXPECT_EQ(contentOf(stateOf({failed(codex, missing), failed(claude, missing),
                                 live(antigravity, {fine})}))
                  .statusLine.text,
              "2 of 3 agents unreadable · read at 1:46 PM");

    UsageState old = threeAgents();
    old.lastRefreshCompletedAt = noon - Seconds(2 * 86400);
    EXPECT_THAT(contentOf(old).statusLine.text, testing::HasSubstr("· read Tue"));
}

TEST(PopoverContent, NamesOnlyTheWorstInBriefAndKeepsTheTime) {
    const PopoverContent two = contentOf(threeAgents(), "overview", german);
    EXPECT_EQ(two.statusLine.briefText, "Antigravity kritisch (+1) · gelesen um 13:46");

    UsageState state = threeAgents();
    // Stale, and still running low: one agent, counted once.
    state.snapshots[1].error = UsageProviderError::timeout("Claude");
    state.snapshots[0].error = UsageProviderError::executableMissing("codex");
    EXPECT_EQ(contentOf(state).statusLine.briefText, "Antigravity critical (+2) · read at 1:46 PM");

    const UsageState fine = stateOf({live(codex, {window("session", 22, fiveHours, 87)})});
    EXPECT_EQ(contentOf(fine).statusLine.briefText, contentOf(fine).statusLine.text);
}

TEST(PopoverContent, CountsTheAgentsOfTheFirstReading) {
    UsageState state = stateOf({live(codex, {}), live(claude, {})});
    for (AgentUsageSnapshot& snapshot : state.snapshots)
        snapshot.source = SnapshotSource::loading;
    state.isRefreshing = true;
    state.lastRefreshCompletedAt.reset();
    state.lastSuccess.clear();
    const PopoverContent content = contentOf(state);
    EXPECT_EQ(content.statusLine.text, "0 of 2 agents read …");
    const AgentBlockContent& block = content.agents.front();
    EXPECT_EQ(block.state, State::loading);
    EXPECT_EQ(block.statusText, "Reading values …");
    EXPECT_EQ(block.dot, StatusColorRole::refreshing);
    EXPECT_EQ(block.boneRows, 2);
    EXPECT_TRUE(block.rows.empty());
}

TEST(PopoverContent, ShowsTheHintWithoutAgents) {
    const PopoverContent content = contentOf(UsageState());
    EXPECT_TRUE(content.tabs.empty());
    ASSERT_TRUE(content.noAgents);
    EXPECT_EQ(content.noAgents->icon, "eye.slash");
    EXPECT_EQ(content.statusLine.text, "No agent enabled");
    EXPECT_FALSE(contentOf(threeAgents()).noAgents);
}

TEST(UsageRow, TellsWhatIsLeftWhenItResetsAndWhetherItLasts) {
    const UsageState state = threeAgents();
    const UsageRowContent row = contentOf(state).agents[2].rows.front();
    EXPECT_EQ(row.value, "7% left");
    EXPECT_EQ(row.figure, "7%");
    EXPECT_EQ(row.figureWord, "left");
    EXPECT_EQ(row.reset, "Resets in 1 h 27 min · 3:15 PM");
    EXPECT_EQ(row.planning, "22 points below plan");
    ASSERT_TRUE(row.forecast);
    EXPECT_EQ(row.forecast->text, "Runs out in 16 min, 70 min before reset");
    EXPECT_EQ(row.forecast->briefText, "Runs out in 16 min");
    EXPECT_EQ(row.forecast->tone, UsageHealth::critical);
    EXPECT_NEAR(row.bar.filledShare, 0.07, 1e-9);
    EXPECT_NEAR(row.bar.paceMark.value_or(-1), 0.29, 1e-9);
    EXPECT_EQ(row.bar.toolTip, "7% left, 93% used, 71% of the time elapsed");
    EXPECT_THAT(row.accessibilityText, testing::EndsWith(": 93% used"));
    EXPECT_EQ(row.accessibilityDetail, row.reset + ". " + row.forecast->text);
}

TEST(UsageRow, BehavesAtTheEnds) {
    const auto rowOf = [](const UsageWindow& each) {
        return usageRowContent(each, false, {}, noon, english);
    };
    const UsageRowContent timeless = rowOf(windowWithoutReset("session", 0));
    EXPECT_EQ(timeless.value, "100% left");
    EXPECT_EQ(timeless.reset, "No reset time");
    EXPECT_EQ(timeless.bar.filledShare, 1);
    EXPECT_FALSE(timeless.bar.paceMark);
    EXPECT_FALSE(timeless.forecast);
    EXPECT_TRUE(timeless.elapsed.empty());

    const UsageRowContent over = rowOf(window("session", 130, fiveHours, 87));
    EXPECT_EQ(over.value, "0% left");
    EXPECT_EQ(over.bar.filledShare, 0);

    const UsageRowContent credited = rowOf(window("session", -10, fiveHours, 87));
    EXPECT_EQ(credited.bar.filledShare, 1);

    const UsageRowContent due = rowOf(window("session", 50, fiveHours, -33));
    EXPECT_EQ(due.reset, "Reset due at 1:15 PM, not confirmed");
    EXPECT_EQ(due.bar.paceMark, 0);
}

TEST(AgentBlock, KeepsStaleFiguresWithTheirAgeAndTheReason) {
    UsageState state = stateOf({failed(codex, UsageProviderError::timeout("Codex"),
                                       {window("session", 22, fiveHours, 87)})});
    state.lastSuccess[codex] = noon - Seconds(34 * 60);
    const AgentBlockContent block = contentOf(state).agents.front();
    EXPECT_EQ(block.state, State::stale);
    EXPECT_EQ(block.statusText, "34 min old");
    EXPECT_TRUE(block.showsClock);
    ASSERT_EQ(block.rows.size(), 1U);
    EXPECT_TRUE(block.rows.front().isStale);
    EXPECT_TRUE(block.rows.front().bar.isStale);
    ASSERT_TRUE(block.failure);
    EXPECT_EQ(block.failure->reason, "Codex did not answer in time.");
    EXPECT_EQ(block.sourceText, "Read 34 min ago through the Codex CLI");
    EXPECT_EQ(contentOf(state, "overview", german).agents.front().statusText, "Stand vor 34 Min.");
}

TEST(AgentBlock, OffersTheWayOutOfAFailure) {
    using Kind = UsageProviderError::Kind;
    struct Way {
        UsageProviderError error;
        WayOut wayOut;
        std::string button;
    };
    const std::vector<Way> ways{
        {UsageProviderError::executableMissing("claude"), WayOut::install, "Install …"},
        {UsageProviderError(Kind::claudeNotLoggedIn), WayOut::logIn, "Log in …"},
        {UsageProviderError(Kind::antigravityNotLoggedIn), WayOut::logIn, "Log in …"},
        {UsageProviderError(Kind::antigravityIneligible), WayOut::openSettings, "Open settings"},
        {UsageProviderError::other("Odd."), WayOut::readAgain, "Read again"},
    };
    for (const Way& way : ways) {
        const AgentBlockContent block = contentOf(stateOf({failed(claude, way.error)})).agents[0];
        EXPECT_EQ(block.state, State::failed);
        EXPECT_EQ(block.statusText, "Unavailable");
        ASSERT_TRUE(block.failure);
        EXPECT_EQ(block.failure->reason, way.error.message(english));
        EXPECT_EQ(block.failure->wayOut, way.wayOut);
        EXPECT_EQ(block.failure->buttonTitle, way.button);
    }
}

TEST(AgentBlock, ListsBalancesAndCreditsAfterTheWindows) {
    AgentUsageSnapshot snapshot = live(claude, {});
    snapshot.balances = {{.id = "a", .amount = 16.8, .currencyCode = "USD", .limit = 20.0},
                         {.id = "b", .amount = 3, .currencyCode = "EUR", .limit = {}}};
    snapshot.credit = CreditInfo::line("$3.20 / $20.00 spent");
    const AgentBlockContent block = contentOf(stateOf({snapshot})).agents.front();
    ASSERT_EQ(block.balances.size(), 3U);
    EXPECT_EQ(block.balances[0], (BalanceRowContent{"Credits", "$16.80 left", "of $20.00"}));
    EXPECT_EQ(block.balances[1], (BalanceRowContent{"Credits", "€3.00 left", ""}));
    EXPECT_EQ(block.balances[2], (BalanceRowContent{"Extra credit", "", "$3.20 / $20.00 spent"}));
}

} // namespace
} // namespace vellmark::tests
