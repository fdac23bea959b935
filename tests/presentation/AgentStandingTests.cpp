#include "AgentNames.h"
#include "presentation/AgentStanding.h"
#include "presentation/MainWindowContent.h"
#include "presentation/PopoverContent.h"
#include "presentation/StatusItemContent.h"
#include "support/Matchers.h"

namespace vellmark::tests {
namespace {

using Kind = WindowStanding::Kind;

Instant minutesAfterNoon(double minutes) {
    return noon + Seconds(minutes * 60);
}

AgentStanding codexStanding(const UsageState& state, double minutes) {
    return standingOf(state.snapshots.front(), state, minutesAfterNoon(minutes));
}

/// 7 % left 90 minutes before the reset, read at noon.
UsageState pressing() {
    UsageState state = stateOf({live(codex, {window("session", 93, fiveHours, 90)})});
    state.lastSuccess[codex] = noon;
    return state;
}

TEST(AgentStanding, NoOldReadingGetsBetterByWaiting) {
    UsageState never = pressing();
    UsageState failing = pressing();
    failing.snapshots[0].source = SnapshotSource::stale;
    failing.snapshots[0].error = UsageProviderError::timeout("Codex");
    UsageState restored = pressing();
    restored.snapshots[0].source = SnapshotSource::stale;
    restored.lastRefreshCompletedAt.reset();
    UsageState kept = pressing();
    kept.snapshots[0].windows[0].readAt = noon;

    for (const UsageState& state : {never, failing, restored, kept}) {
        for (double minutes = 1; minutes < 90; ++minutes) {
            const Instant now = minutesAfterNoon(minutes);
            EXPECT_EQ(codexStanding(state, minutes).health, UsageHealth::critical) << minutes;
            EXPECT_EQ(worstHealth(state, now), UsageHealth::critical) << minutes;
            EXPECT_THAT(verdictText(state, now, english), HasSubstr("Codex critical")) << minutes;
        }
        for (const double minutes : {90.0, 91.0, 600.0, 60000.0}) {
            const AgentStanding due = codexStanding(state, minutes);
            EXPECT_EQ(due.windows[0].kind, Kind::due) << minutes;
            EXPECT_EQ(due.health, UsageHealth::unavailable) << minutes;
            EXPECT_TRUE(due.isDue());
        }
    }
}

TEST(AgentStanding, ANewReadingIsJudgedByNow) {
    // A session of which little was used: it is fine now, and the earlier moment means nothing.
    UsageState state = stateOf({live(codex, {window("session", 60, fiveHours, 120)})});
    state.lastSuccess[codex] = noon;
    const WindowStanding soon = codexStanding(state, 10).windows[0];
    EXPECT_FALSE(soon.isOld);
    EXPECT_EQ(soon.judgedAt, minutesAfterNoon(10));
    const WindowStanding later = codexStanding(state, 40).windows[0];
    EXPECT_TRUE(later.isOld) << "nobody has asked for a long time";
    EXPECT_EQ(later.judgedAt, noon);
    // A clock that was set back makes no reading of the future.
    state.snapshots[0].source = SnapshotSource::stale;
    EXPECT_EQ(codexStanding(state, -30).windows[0].judgedAt, minutesAfterNoon(-30));
}

TEST(AgentStanding, AWindowIsAsOldAsItsOwnReading) {
    UsageState state = stateOf({live(
        claude, {window("session", 22, fiveHours, 87), window("fable-weekly", 84, week, 2621)})});
    state.snapshots[0].windows[1].readAt = noon - Seconds(48 * 60);
    const AgentStanding standing = standingOf(state.snapshots[0], state, noon);
    EXPECT_FALSE(standing.isOld);
    EXPECT_FALSE(standing.windows[0].isOld);
    EXPECT_TRUE(standing.windows[1].isOld);
    EXPECT_EQ(standing.windows[1].judgedAt, noon - Seconds(48 * 60));
}

TEST(AgentStanding, EveryPlaceTellsTheAgeOfOldFigures) {
    UsageState state = pressing();
    state.snapshots[0].source = SnapshotSource::stale;
    state.snapshots[0].error = UsageProviderError::timeout("Codex");
    state.snapshots.push_back(live(claude, {window("session", 22, fiveHours, 150)}));
    state.lastSuccess[claude] = minutesAfterNoon(33);
    state.enabledProviderIDs.insert(claude);
    const Instant now = minutesAfterNoon(34);
    state.lastRefreshCompletedAt = now;
    const std::string age = "34 min old";

    EXPECT_THAT(statusItemContent(state, now, english).toolTip, EndsWith(", " + age));
    EXPECT_EQ(verdictLine(state, now, english).text, "Codex critical (34 min old) · as of 2:22 PM");
    const OverviewPageContent overview = overviewPageContent(state, now, english);
    EXPECT_EQ(overview.verdict.subject, "Codex, Session");
    EXPECT_THAT(overview.verdict.text, HasSubstr(age));
    EXPECT_EQ(overview.cards[0].statusText, age);
    const SidebarItem entry = sidebarItems(state, now, english)[2];
    EXPECT_EQ(entry.value, age);
    EXPECT_EQ(entry.help, "7% left, " + age);
    EXPECT_EQ(entry.accessibilityText, "Codex: Critical. 7% left, " + age);

    state.snapshots[0].mayBeNewer = true;
    EXPECT_THAT(statusItemContent(state, now, english).toolTip, EndsWith(", At most " + age));
    state.snapshots[0] = pressing().snapshots[0];
    state.lastSuccess[codex] = minutesAfterNoon(33);
    EXPECT_THAT(statusItemContent(state, now, english).toolTip, Not(HasSubstr("old")));
}

TEST(AgentStanding, ForecastsAreOfTheReadingToo) {
    UsageState state = pressing();
    state.snapshots[0].source = SnapshotSource::stale;
    const auto forecastAt = [&](double minutes) {
        return popoverContent(state, "overview", minutesAfterNoon(minutes), english)
            .agents[0]
            .rows[0]
            .forecast->text;
    };
    EXPECT_EQ(forecastAt(0), "Runs out in 15 min, 74 min before reset");
    EXPECT_EQ(forecastAt(10), "Runs out in 5 min, 74 min before reset");
    EXPECT_EQ(forecastAt(30), "At this pace, empty since 2:03 PM");
}

TEST(AgentStanding, AUsedUpWindowHoldsTheNarrowerOnes) {
    const UsageState state = stateOf(
        {live(claude, {window("session", 20, fiveHours, 100), window("weekly", 100, week, 3000),
                       window("fable-weekly", 40, week, 3000),
                       window("pool:Gemini Models|5h", 10, fiveHours, 100)})});
    const AgentStanding standing = standingOf(state.snapshots[0], state, noon);
    const auto is = [](Kind kind) { return Field(&WindowStanding::kind, kind); };
    EXPECT_THAT(standing.windows,
                ElementsAre(is(Kind::held), is(Kind::usedUp), is(Kind::held), is(Kind::counts)));
    EXPECT_EQ(standing.windows[0].holder->id, "weekly");
    EXPECT_EQ(standing.windows[0].health, UsageHealth::unavailable);
    EXPECT_EQ(standing.health, UsageHealth::critical);

    const auto rows = popoverContent(state, "overview", noon, english).agents[0].rows;
    EXPECT_EQ(rows[0].reset, "Waits for the week");
    EXPECT_EQ(rows[0].value, "80% left");
    EXPECT_TRUE(rows[0].isMuted);
    EXPECT_EQ(rows[0].planning, "");
    EXPECT_EQ(rows[1].reset, "Used up · back Sat 3:48 PM");
    EXPECT_TRUE(rows[1].isUsedUp);
    EXPECT_FALSE(rows[1].forecast);
    EXPECT_EQ(sidebarItems(state, noon, english)[2].value, "Used up");
    const VerdictContent verdict = overviewPageContent(state, noon, english).verdict;
    EXPECT_EQ(verdict.subject, "Claude, Week");
    EXPECT_EQ(verdict.text, "is used up, back Sat 3:48 PM.");
    // Once its reset is due nobody knows, and nothing is held by it any more.
    UsageState later = state;
    later.snapshots[0].windows[0].resetsAt = minutesAfterNoon(3200);
    const AgentStanding after = standingOf(later.snapshots[0], later, minutesAfterNoon(3001));
    EXPECT_EQ(after.windows[1].kind, Kind::due);
    EXPECT_EQ(after.windows[0].kind, Kind::counts);
}

TEST(AgentStanding, OfSeveralUsedUpWindowsTheLastToComeBackCounts) {
    UsageState state = stateOf(
        {live(claude, {window("session", 100, fiveHours, 100), window("weekly", 100, week, 3000),
                       window("fable-weekly", 99.97, week, 4000)})});
    const auto pressingWindow = mostPressingWindow(state, noon);
    ASSERT_TRUE(pressingWindow);
    EXPECT_EQ(pressingWindow->window->id, "weekly") << "the model's waits for it";
    state.snapshots[0].windows[1].usedPercent = 50;
    EXPECT_EQ(mostPressingWindow(state, noon)->window->id, "fable-weekly") << "written as 0%";
    state.snapshots[0].windows[2].usedPercent = 99.9;
    EXPECT_EQ(mostPressingWindow(state, noon)->window->id, "session");
}

} // namespace
} // namespace vellmark::tests
