#include "AgentNames.h"
#include "presentation/PopoverContent.h"
#include "support/Matchers.h"

namespace vellmark::tests {
namespace {

using State = AgentBlockContent::State;

PopoverContent popoverOf(const UsageState& state, std::string_view tab = "overview",
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
                                  PopoverTab::agent(AgentProviderID("a:b"))}) {
        EXPECT_EQ(PopoverTab::fromStoredForm(tab.storedForm(), shown), tab);
    }
    for (const char* other : {"provider:claude", "provider:", "codex", "", "Provider:codex"}) {
        EXPECT_EQ(PopoverTab::fromStoredForm(other, shown), PopoverTab::overview()) << other;
    }
}

TEST(PopoverContent, HasATabForEachAgentWithABadgeForWhatPresses) {
    const PopoverContent content = popoverOf(threeAgents(), "provider:claude");
    ASSERT_NE(content.selectedAgent(), nullptr);
    EXPECT_EQ(content.selectedAgent()->id, claude);
    EXPECT_EQ(popoverOf(threeAgents()).selectedAgent(), nullptr);
    std::vector<std::pair<std::string, std::optional<UsageHealth>>> tabs;
    for (const PopoverTabContent& tab : content.tabs) {
        tabs.emplace_back(tab.title, tab.badge);
    }
    EXPECT_THAT(tabs, ElementsAre(Pair("Overview", std::nullopt), Pair("Codex", std::nullopt),
                                  Pair("Claude", UsageHealth::attention),
                                  Pair("Antigravity", UsageHealth::critical)));
}

TEST(PopoverContent, SaysWhatIsWorstAndWhenItWasRead) {
    const UsageWindow fine = window("session", 22, fiveHours, 87);
    const UsageWindow low = window("session", 60, fiveHours, 150);
    const UsageWindow spent = window("session", 97, fiveHours, 150);
    const auto missing = UsageProviderError::executableMissing("codex");
    const UsageState twoLow =
        stateOf({live(codex, {low}), live(claude, {low}), live(antigravity, {spent})});
    UsageState old = threeAgents();
    old.lastRefreshCompletedAt = noon - Seconds(2 * 86400);
    const std::pair<UsageState, const char*> cases[] = {
        {threeAgents(), "Antigravity critical, Claude running low · read at 1:46 PM"},
        {old, "Antigravity critical, Claude running low · read Tue 1:48 PM"},
        {stateOf({live(codex, {fine})}), "Everything lasts until its reset · read at 1:46 PM"},
        // A little short of the reset is no cause for alarm, but no promise either.
        {stateOf({live(codex, {window("session", 73, fiveHours, 87)})}),
         "Everything healthy · read at 1:46 PM"},
        {stateOf({failed(codex, missing), failed(claude, missing), live(antigravity, {fine})}),
         "2 of 3 agents unreadable · as of 1:46 PM"},
        {twoLow, "Antigravity critical, 2 of 3 agents running low · read at 1:46 PM"},
        {stateOf({live(codex, {spent}), live(claude, {low}), live(antigravity, {spent})}),
         "2 of 3 agents critical, Claude running low · read at 1:46 PM"},
        {UsageState(), "No agent enabled"},
    };
    for (const auto& [state, text] : cases) {
        EXPECT_EQ(popoverOf(state).statusLine.text, text);
    }
    EXPECT_EQ(popoverOf(twoLow, "overview", german).statusLine.text,
              "Antigravity kritisch, 2 von 3 Agenten werden knapp · gelesen um 13:46");
}

TEST(PopoverContent, NothingIsReadAtAMomentAtWhichNothingWasRead) {
    const UsageWindow fine = window("session", 22, fiveHours, 87);
    const auto timeout = UsageProviderError::timeout("Codex");
    UsageState state = stateOf({failed(codex, timeout, {fine}), live(claude, {fine})});
    state.lastSuccess[codex] = noon - Seconds(34 * 60);
    EXPECT_EQ(popoverOf(state).statusLine.text, "Codex unreadable · as of 1:46 PM");

    state.snapshots[1] = failed(claude, timeout, {fine});
    state.lastSuccess[claude] = noon - Seconds(12 * 60);
    EXPECT_EQ(popoverOf(state).statusLine.text, "2 of 2 agents unreadable · 34 min old");

    state = stateOf({failed(codex, timeout)});
    EXPECT_EQ(popoverOf(state).statusLine.text, "Codex unreadable · last tried 1:46 PM");

    // At the start of the program, before anything was read.
    state = stateOf({live(codex, {fine})});
    state.snapshots[0].source = SnapshotSource::stale;
    state.lastSuccess[codex] = noon - Seconds(34 * 60);
    state.lastRefreshCompletedAt.reset();
    EXPECT_EQ(popoverOf(state).statusLine.text, "Everything lasts until its reset · 34 min old");

    const UsageWindow due = window("session", 22, fiveHours, -3);
    state = stateOf({live(codex, {due}), live(claude, {fine})});
    EXPECT_EQ(popoverOf(state).statusLine.text, "Codex: reset due · read at 1:46 PM");
    EXPECT_EQ(popoverOf(state).agents[0].statusText, "Reset due");
}

TEST(PopoverContent, NamesOnlyTheWorstInBriefAndKeepsTheTime) {
    const PopoverContent two = popoverOf(threeAgents(), "overview", german);
    EXPECT_EQ(two.statusLine.briefText,
              "Antigravity kritisch, 1 weiterer Agent betroffen · gelesen um 13:46");

    UsageState state = threeAgents();
    // Stale, and still running low: one agent, counted once.
    state.snapshots[1].error = UsageProviderError::timeout("Claude");
    state.snapshots[0].error = UsageProviderError::executableMissing("codex");
    EXPECT_EQ(popoverOf(state).statusLine.briefText,
              "Antigravity critical, 2 more agents affected · as of 1:46 PM");

    const UsageState fine = stateOf({live(codex, {window("session", 22, fiveHours, 87)})});
    EXPECT_EQ(popoverOf(fine).statusLine.briefText, popoverOf(fine).statusLine.text);
}

TEST(PopoverContent, CountsTheAgentsOfTheFirstReading) {
    UsageState state = stateOf({live(codex, {}), live(claude, {})});
    for (AgentUsageSnapshot& snapshot : state.snapshots) {
        snapshot.source = SnapshotSource::loading;
    }
    state.isRefreshing = true;
    state.lastRefreshCompletedAt.reset();
    state.lastSuccess.clear();
    const PopoverContent content = popoverOf(state);
    EXPECT_EQ(content.statusLine.text, "0 of 2 agents read …");
    const AgentBlockContent& block = content.agents.front();
    EXPECT_EQ(block.state, State::loading);
    EXPECT_EQ(block.statusText, "Reading values …");
    EXPECT_EQ(block.dot, StatusColorRole::refreshing);
    EXPECT_EQ(block.boneRows, 2);
    EXPECT_TRUE(block.rows.empty());
}

TEST(UsageRow, TellsWhatIsLeftWhenItResetsAndWhetherItLasts) {
    UsageState state = threeAgents();
    const UsageRowContent row = popoverOf(state).agents[2].rows.front();
    EXPECT_EQ(row.value, "7% left");
    EXPECT_EQ(row.figure + " " + row.figureWord, row.value);
    EXPECT_EQ(row.reset, "Resets in 1 h 27 min · 3:15 PM");
    EXPECT_EQ(row.planning, "22 points short");
    ASSERT_TRUE(row.forecast);
    EXPECT_EQ(row.forecast->text, "Runs out in 16 min, 70 min before reset");
    EXPECT_EQ(row.forecast->briefText, "Runs out in 16 min");
    EXPECT_EQ(row.forecast->tone, UsageHealth::critical);
    EXPECT_NEAR(row.bar.filledShare, 0.07, 1e-9);
    EXPECT_NEAR(row.bar.paceMark.value_or(-1), 0.29, 1e-9);
    EXPECT_EQ(row.bar.toolTip, "7% left, 93% used, 71% of the time elapsed");
    EXPECT_THAT(row.accessibilityText, EndsWith(": 93% used"));
    EXPECT_EQ(row.accessibilityDetail, row.reset + ". " + row.forecast->text);

    // Where that is wanted, it says first what is used.
    state.firstFigure = FirstFigure::used;
    const UsageRowContent used = popoverOf(state).agents[2].rows.front();
    EXPECT_EQ(used.value, "93% used");
    EXPECT_EQ(used.figure + " " + used.figureWord, used.value);
    EXPECT_NEAR(used.bar.filledShare, 0.93, 1e-9);
    EXPECT_NEAR(used.bar.usedShare, 0.93, 1e-9);
    EXPECT_THAT(used.bar.toolTip, StartsWith("93% used, 7% left"));
    // The mark stands where an even pace would have the fill end.
    EXPECT_NEAR(used.bar.paceMark.value_or(-1), 0.71, 1e-9);
}

TEST(UsageRow, BehavesAtTheEnds) {
    const auto rowOf = [](const UsageWindow& each) {
        return popoverOf(stateOf({live(codex, {each})})).agents[0].rows[0];
    };
    const UsageRowContent timeless = rowOf(windowWithoutReset("session", 0));
    EXPECT_EQ(timeless.value, "100% left");
    EXPECT_EQ(timeless.reset, "Reset time unknown");
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
    EXPECT_EQ(due.bar.health, UsageHealth::unavailable);
    EXPECT_TRUE(due.isMuted);
}

TEST(AgentBlock, KeepsStaleFiguresWithTheirAgeAndTheReason) {
    UsageState state = stateOf({failed(codex, UsageProviderError::timeout("Codex"),
                                       {window("session", 22, fiveHours, 87)})});
    state.lastSuccess[codex] = noon - Seconds(34 * 60);
    const AgentBlockContent block = popoverOf(state).agents.front();
    EXPECT_EQ(block.state, State::stale);
    EXPECT_EQ(block.statusText, "34 min old");
    EXPECT_TRUE(block.showsClock);
    ASSERT_EQ(block.rows.size(), 1U);
    EXPECT_TRUE(block.rows.front().isMuted);
    EXPECT_TRUE(block.rows.front().bar.isStale);
    ASSERT_TRUE(block.failure);
    EXPECT_EQ(block.failure->reason, "Codex did not answer in time.");
    EXPECT_EQ(block.sourceText, "Read 34 min ago through the Codex CLI");
}

TEST(AgentBlock, TellsWhatIsOlderThanItLooksAndWhenTheAgentIsAskedAgain) {
    AgentUsageSnapshot kept =
        failed(claude, UsageProviderError(UsageProviderError::Kind::claudeServiceUnavailable),
               {window("session", 22, fiveHours, 87)});
    kept.mayBeNewer = true;
    UsageState state = stateOf({kept});
    state.lastSuccess[claude] = noon - Seconds(3600);
    state.restsUntil[claude] = noon + Seconds(600);
    const AgentBlockContent block = popoverOf(state).agents.front();
    EXPECT_EQ(block.statusText, "At most 60 min old");
    EXPECT_EQ(block.sourceText, "Read at most 60 min ago through the Claude Code CLI");
    EXPECT_TRUE(block.failure->reason.ends_with(" Next try: 1:58 PM.")) << block.failure->reason;
    state.restsUntil[claude] = noon - Seconds(1);
    EXPECT_TRUE(popoverOf(state).agents.front().failure->reason.ends_with("there."));

    UsageWindow old = window("fable-weekly", 50, 10080, 6000);
    old.readAt = noon - Seconds(1800);
    AgentUsageSnapshot partly = live(claude, {window("session", 22, fiveHours, 87), old});
    partly.isIncomplete = true;
    partly.notes = {{SnapshotNote::ReadingWay{"session", 8400}},
                    {SnapshotNote::AgentSays{"You've hit your session limit"}}};
    const AgentBlockContent half = popoverOf(stateOf({partly})).agents.front();
    EXPECT_FALSE(half.rows[0].isMuted);
    EXPECT_TRUE(half.rows[1].isMuted && half.rows[1].bar.isStale);
    EXPECT_TRUE(half.rows[1].reset.ends_with(" · 30 min old")) << half.rows[1].reset;
    EXPECT_EQ(half.notes,
              (std::vector<std::string>{"The agent says: You've hit your session limit",
                                        "The reading ended early; what it lacks is older."}));
}

TEST(AgentBlock, OffersTheWayOutOfAFailure) {
    using Kind = UsageProviderError::Kind;
    const std::tuple<AgentProviderID, UsageProviderError, WayOut, const char*> ways[] = {
        {claude, UsageProviderError::executableMissing("claude"), WayOut::install, "Install …"},
        {claude, UsageProviderError(Kind::claudeAPIKey), WayOut::logIn, "Log in …"},
        {claude, UsageProviderError::claudeOptionRefused("--x"), WayOut::update, "Read again"},
        {codex, UsageProviderError(Kind::codexNotLoggedIn), WayOut::logIn, "Log in …"},
        {antigravity, UsageProviderError(Kind::antigravityNotLoggedIn), WayOut::logIn, "Log in …"},
        {antigravity, UsageProviderError(Kind::antigravityIneligible), WayOut::openSettings,
         "Open settings"},
        {codex, UsageProviderError::other("Odd."), WayOut::readAgain, "Read again"},
    };
    for (const auto& [agent, error, wayOut, button] : ways) {
        const AgentBlockContent block = popoverOf(stateOf({failed(agent, error)})).agents[0];
        EXPECT_EQ(block.state, State::failed);
        EXPECT_EQ(block.statusText, "Unavailable");
        ASSERT_TRUE(block.failure);
        EXPECT_EQ(block.failure->reason, error.message(english));
        EXPECT_EQ(block.failure->wayOut, wayOut);
        EXPECT_EQ(block.failure->buttonTitle, button);
    }
}

TEST(AgentBlock, NamesThePlanAndListsBalancesAndCredits) {
    AgentUsageSnapshot snapshot = live(codex, {});
    snapshot.plan = "Prolite";
    snapshot.balances = {{.id = "a", .amount = 16.8, .currencyCode = "USD", .limit = 20.0},
                         {.id = "b", .amount = 3, .currencyCode = "EUR", .limit = {}}};
    snapshot.credit = CreditInfo::line("$3.20 / $20.00 spent");
    const AgentBlockContent block = popoverOf(stateOf({snapshot})).agents.front();
    EXPECT_EQ(block.plan, "Pro Lite");
    EXPECT_THAT(block.balances,
                ElementsAre(BalanceRowContent{"Credits", "$16.80 left", "of $20.00"},
                            BalanceRowContent{"Credits", "€3.00 left", ""},
                            BalanceRowContent{"Extra credit", "", "$3.20 / $20.00 spent"}));

    // What is left of the extra credit is told by the credit line already.
    snapshot.balances = {{extraUsageBalanceID, 16.8, "USD", 20.0}};
    EXPECT_EQ(popoverOf(stateOf({snapshot})).agents.front().balances.size(), 1U);
    snapshot.credit.reset();
    EXPECT_EQ(popoverOf(stateOf({snapshot})).agents.front().balances.front().value, "$16.80 left");
}

TEST(AgentBlock, SaysUntilWhenAnAgentRefusesAndWhy) {
    // Null: the agent says only that it refuses.
    const std::tuple<const char*, double, std::string> cases[] = {
        {nullptr, 100, "Codex refuses until 3:15 PM"},
        {"rate_limit_reached", 100, "Codex refuses until 3:15 PM"},
        {nullptr, 50, "Codex refuses for now"},
        {"workspace_member_credits_depleted", 50, "Workspace credits are used up"},
        {"workspace_owner_usage_limit_reached", 50, "Workspace limit is reached"},
        {"spend_control_reached", 50, "Your spending limit is reached"},
    };
    for (const auto& [reached, used, reason] : cases) {
        AgentUsageSnapshot snapshot = live(codex, {window("session", used, fiveHours, 87)});
        snapshot.allowance.emplace();
        if (reached) {
            snapshot.allowance->reachedType = reached;
        } else {
            snapshot.allowance->ordinaryUsageAllowed = false;
        }
        const AgentBlockContent block = popoverOf(stateOf({snapshot})).agents.front();
        EXPECT_THAT(block.balances, ElementsAre(BalanceRowContent{"Used up", "", reason, true}));
        EXPECT_EQ(block.health, UsageHealth::critical);
        EXPECT_THAT(block.accessibilityDetail, EndsWith("Used up: " + reason));
    }
    AgentUsageSnapshot back = live(codex, {window("session", 100, fiveHours, 87)});
    back.allowance = UsageAllowance{.ordinaryUsageAllowed = true};
    EXPECT_TRUE(popoverOf(stateOf({back})).agents.front().balances.empty());
}

TEST(AgentBlock, CountsTheResetsInHand) {
    const auto row = [](std::int64_t count, std::optional<Instant> expiry) {
        AgentUsageSnapshot snapshot = live(codex, {window("session", 5, fiveHours, 87)});
        snapshot.allowance = UsageAllowance{.bankedResets = count, .bankedResetExpiresAt = expiry};
        const auto rows = popoverOf(stateOf({snapshot})).agents.front().balances;
        return rows.empty() ? std::nullopt : std::optional(rows.back());
    };
    using Row = BalanceRowContent;
    EXPECT_EQ(row(2, noon + Seconds(9 * 86400)),
              (Row{"Banked resets", "2", "· next expires on Nov 29, 1:48 PM"}));
    EXPECT_EQ(row(2, noon + Seconds(3600)),
              (Row{"Banked resets", "2", "· next expires at 2:48 PM"}));
    EXPECT_EQ(row(3, noon - Seconds(1)), (Row{"Banked resets", "3", ""}));
    EXPECT_EQ(row(3, std::nullopt), (Row{"Banked resets", "3", ""}));
    EXPECT_EQ(row(0, std::nullopt), std::nullopt);
}

} // namespace
} // namespace vellmark::tests
