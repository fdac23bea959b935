#include "AgentNames.h"
#include "presentation/AgentPageContent.h"
#include "support/Matchers.h"

namespace vellmark::tests {
namespace {

class AgentsPage : public testing::Test {
protected:
    AgentsPage() { machine.home = "/home/ann"; }

    AgentPageContent content(std::size_t agent = 0) const {
        return agentPageContent(state.snapshots.at(agent),
                                {.state = state,
                                 .history = history,
                                 .machine = machine,
                                 .facts = facts ? &*facts : nullptr},
                                noon, english);
    }
    /// The value of the fact with this name, with its detail; empty when there is none.
    std::string fact(std::string_view label) const {
        for (const ReadingFactContent& fact : content().reading.facts) {
            if (fact.label == label) {
                return fact.value + (fact.detail.empty() ? "" : " " + fact.detail);
            }
        }
        return {};
    }

    UsageState state = stateOf({live(claude, {window("session", 54, fiveHours, 132),
                                              window("fable-weekly", 84, week, 0.26 * week)})});
    UsageHistory history;
    Machine machine;
    std::optional<AgentFacts> facts;
};

TEST_F(AgentsPage, TellsInTheHeadWhoItIsAndHowOldTheFiguresAre) {
    state.snapshots[0].accountLabel = "name@example.org";
    state.snapshots[0].plan = "Max 20x";
    EXPECT_EQ(content().head.title, "Claude");
    EXPECT_EQ(content().head.subtitle, "name@example.org · Max 20x · Claude Code CLI");
    EXPECT_EQ(content().head.age, "Read 2 min ago");
    EXPECT_FALSE(content().head.isRefreshing);

    state.reading = {codex};
    EXPECT_FALSE(content().head.isRefreshing) << "another agent is read";
    state.reading = {claude};
    EXPECT_TRUE(content().head.isRefreshing);
    EXPECT_EQ(content().head.refresh.title, "Refreshing …");

    // The age stands beside the name, so the end of the head tells of the attempt.
    AgentUsageSnapshot& snapshot = state.snapshots[0];
    snapshot.source = SnapshotSource::stale;
    snapshot.error = UsageProviderError::timeout("Claude");
    state.lastSuccess[claude] = noon - Seconds(34 * 60);
    EXPECT_EQ(content().head.age, "Last tried 2 min ago");
    EXPECT_EQ(content().windows[0].statusText, "Running low · 34 min old");
}

TEST_F(AgentsPage, ShowsEachWindowWithItsOwnHealthAndOutlook) {
    const AgentPageContent page = content();
    ASSERT_THAT(page.windows, SizeIs(2));
    EXPECT_THAT(page.agent.rows, IsEmpty()) << "they would be told twice";
    EXPECT_EQ(page.windows[0].statusText, "Healthy");
    EXPECT_EQ(page.windows[0].outlook, "Lasts until the reset");
    EXPECT_EQ(page.windows[1].statusText, "Running low");
    EXPECT_TRUE(page.windows[1].row.forecast);
    EXPECT_EQ(page.windows[1].outlook, "") << "the forecast stands there";
    EXPECT_FALSE(page.windows[0].chartNote.empty());

    history.add(sampleOf(claude, "session", 600, 50, 132 * 60));
    history.add(sampleOf(claude, "session", 120, 54, 132 * 60));
    EXPECT_TRUE(content().windows[0].chartNote.empty());
    EXPECT_FALSE(content().windows[1].chartNote.empty()) << "of the other window";

    state.snapshots[0].windows[0].resetsAt = noon - Seconds(60);
    EXPECT_EQ(content().windows[0].statusText, "Reset due");
}

TEST_F(AgentsPage, OffersNoRangeWhereThereIsNoCourse) {
    EXPECT_THAT(content().ranges, SizeIs(2));
    state.snapshots[0].windows.clear();
    EXPECT_THAT(content().ranges, IsEmpty());
    EXPECT_EQ(agentPageRange("7d"), ChartRange::week);
    EXPECT_EQ(agentPageRange("1y"), ChartRange::day) << "is none of this page's";
}

TEST_F(AgentsPage, TellsHowTheAgentIsRead) {
    EXPECT_EQ(fact("CLI"), "Claude Code CLI");
    EXPECT_EQ(fact("Path"), "Looking for it …");
    EXPECT_EQ(fact("Last read"), "2 min ago · 1:46 PM");
    EXPECT_EQ(fact("Took"), "") << "nobody knows after a restart";
    EXPECT_THAT(content().agent.notes, IsEmpty());
    state.readByHandOnly = {claude};
    EXPECT_THAT(content().agent.notes, SizeIs(1));

    facts = AgentFacts{.id = claude,
                       .toolPath = "/home/ann/.local/bin/claude",
                       .toolVersion = "2.1.170 (Claude Code)",
                       .loggedIn = true};
    EXPECT_EQ(fact("CLI"), "Claude Code CLI 2.1.170");
    EXPECT_EQ(fact("Login"), "") << "the account tells it";
    EXPECT_EQ(fact("Path"), "~/.local/bin/claude");
    EXPECT_EQ(content().reading.facts[1].copied, "/home/ann/.local/bin/claude");

    facts->toolVersion = "unnumbered\x1b[2J";
    facts->loggedIn = false;
    EXPECT_EQ(fact("Login"), "Not logged in");
    EXPECT_EQ(fact("CLI"), "Claude Code CLI unnumbered");
    facts = AgentFacts{.id = claude};
    EXPECT_EQ(fact("Path"), "Not found");
    EXPECT_EQ(content().reading.facts[1].copied, "");

    state.snapshots[0].notes = {{SnapshotNote::ReadingWay{"query", 6400}}};
    EXPECT_EQ(fact("Took"), "6.4 s · query");
    state.readingTook[claude] = Seconds(7);
    EXPECT_EQ(fact("Took"), "7.0 s · query") << "by the clock, with what stood around it";
}

TEST_F(AgentsPage, TellsThePhasesThatCanBeSeen) {
    EXPECT_THAT(content().reading.phases, IsEmpty());
    state.snapshots[0].notes = {{SnapshotNote::ClaudeTiming{.waitMs = 0,
                                                            .startMs = 1100,
                                                            .statusMs = 600,
                                                            .usageMs = 2900,
                                                            .quietMs = 1200,
                                                            .endMs = 30}}};
    const ReadingCardContent reading = content().reading;
    EXPECT_EQ(reading.phasesText, "Start 1.1 · Status 0.6 · Usage 2.9 · Quiet 1.2 s");
    double whole = 0;
    for (const ReadingPhaseContent& phase : reading.phases) {
        whole += phase.share;
    }
    EXPECT_DOUBLE_EQ(whole, 1);
    EXPECT_DOUBLE_EQ(reading.phases.at(2).share, 2.9 / 5.8);
}

TEST_F(AgentsPage, MovesTheAgentAmongThoseThatAreShown) {
    EXPECT_EQ(content().reading.orderTitle, "") << "the only agent";
    state = stateOf({live(codex, {}), live(antigravity, {})});
    state.providerOrder = {codex, claude, antigravity}; // Claude is switched off
    const ReadingCardContent first = content().reading;
    EXPECT_EQ(first.position, "1 of 2");
    EXPECT_THAT(first.orderIfEarlier, IsEmpty());
    EXPECT_THAT(first.orderIfLater, ElementsAre(antigravity, claude, codex));
    const ReadingCardContent last = content(1).reading;
    EXPECT_THAT(last.orderIfEarlier, ElementsAre(antigravity, claude, codex));
    EXPECT_THAT(last.orderIfLater, IsEmpty());
}

TEST_F(AgentsPage, HasItsPlaceBeforeTheFirstReading) {
    state.snapshots[0] = {.id = claude};
    const AgentPageContent page = content();
    EXPECT_EQ(page.agent.boneRows, 3);
    EXPECT_EQ(page.head.age, "");
    EXPECT_EQ(fact("Last read"), "Not read yet");
    EXPECT_THAT(page.windows, IsEmpty());

    state = stateOf({failed(claude, UsageProviderError::executableMissing("Claude Code CLI"))});
    EXPECT_EQ(content().agent.failure->wayOut, WayOut::install);
    EXPECT_EQ(content().head.age, "Last tried 2 min ago");
}

} // namespace
} // namespace vellmark::tests
