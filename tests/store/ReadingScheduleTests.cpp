#include "store/ReadingSchedule.h"
#include "store/StoreFixture.h"
#include "store/UsageHistory.h"

#include <algorithm>

namespace vellmark::tests {
namespace {

using Schedule = StoreFixture;
using Kind = UsageProviderError::Kind;

const AgentProviderID agent("claude");
const Instant start{Seconds(786'000'000)};

Instant after(double minutes) {
    return start + Seconds(minutes * 60);
}

TEST(ReadingSchedule, LeavesAServiceThatRefusesAloneForLongerEachTime) {
    ReadingSchedule schedule;
    EXPECT_TRUE(schedule.isDue(agent, start));
    double minutes = 0;
    for (const double pause : {5, 10, 20, 40, 40}) {
        schedule.attempted(agent, after(minutes));
        schedule.failed(agent, {}, true);
        EXPECT_EQ(schedule.restsUntil(agent, after(minutes)), after(minutes + pause));
        EXPECT_FALSE(schedule.isDue(agent, after(minutes + pause - 1)));
        minutes += pause;
        EXPECT_TRUE(schedule.isDue(agent, after(minutes)));
    }
    schedule.attempted(agent, after(minutes));
    schedule.succeeded(agent, {});
    EXPECT_TRUE(schedule.isDue(agent, after(minutes)));
    schedule.failed(agent, {}, true);
    EXPECT_EQ(schedule.restsUntil(agent, after(minutes)), after(minutes + 5)) << "from the start";
    EXPECT_TRUE(schedule.isDue(agent, after(minutes - 60))) << "the clock was set back";
}

TEST_F(Schedule, AsksAServiceThatRefusesLessOftenButTheUserAtOnce) {
    makeStore();
    claude->fails(UsageProviderError(Kind::claudeServiceUnavailable));
    refresh(RefreshTrigger::launch);
    EXPECT_EQ(state().restsUntilOf(claude->id()), executor.now() + Seconds(300));
    const auto next = [&](double minutes, RefreshTrigger trigger) {
        executor.advance(Seconds(minutes * 60));
        refresh(trigger);
        return claude->fetchCount();
    };
    EXPECT_EQ(next(5, RefreshTrigger::timer), 2);
    EXPECT_EQ(next(5, RefreshTrigger::timer), 2);
    EXPECT_EQ(codex->fetchCount(), 3) << "the others go on";
    EXPECT_EQ(next(1, RefreshTrigger::manual), 3);
    EXPECT_EQ(next(15, RefreshTrigger::timer), 3);
    EXPECT_EQ(next(0, RefreshTrigger::wake), 4) << "the network may be another one";
    claude->answersUsed(20, executor.now());
    EXPECT_EQ(next(40, RefreshTrigger::timer), 5);
    EXPECT_FALSE(state().restsUntilOf(claude->id()));
    EXPECT_EQ(next(5, RefreshTrigger::timer), 6);
    // Whoever is not logged in may be in a moment.
    claude->fails(UsageProviderError(Kind::claudeNotLoggedIn));
    EXPECT_EQ(next(5, RefreshTrigger::timer), 7);
    EXPECT_EQ(next(5, RefreshTrigger::timer), 8);
}

TEST_F(Schedule, SpendsQuotaSeldomOrNotAtAllUnlessAsked) {
    makeStore();
    refresh(RefreshTrigger::launch);
    claude->paces({.interval = Seconds(1800)});
    antigravity->paces({.automatic = false});
    refresh(RefreshTrigger::manual);
    ASSERT_EQ(claude->fetchCount(), 2);
    EXPECT_TRUE(state().readByHandOnly.contains(antigravity->id()));
    for (int minutes = 5; minutes <= 25; minutes += 5) {
        executor.advance(Seconds(300));
        refresh(RefreshTrigger::timer);
    }
    EXPECT_EQ(claude->fetchCount(), 2);
    executor.advance(Seconds(300));
    refresh(RefreshTrigger::timer);
    EXPECT_EQ(claude->fetchCount(), 3);
    for (const auto trigger : {RefreshTrigger::wake, RefreshTrigger::launch}) {
        refresh(trigger);
    }
    EXPECT_EQ(antigravity->fetchCount(), 2);
    refresh(RefreshTrigger::manual);
    EXPECT_EQ(antigravity->fetchCount(), 3);
}

TEST_F(Schedule, FiguresThatTheAgentHadKeptAreOldAndNotRecorded) {
    makeStore();
    claude->answersUsed(10, executor.now());
    refresh(RefreshTrigger::launch, {claude->id()});
    const Instant live = executor.now();
    executor.advance(Seconds(1800));

    // Dated an hour back: what was read half an hour ago is newer.
    claude->answersKept(7, executor.now() - Seconds(3600));
    refresh(RefreshTrigger::manual, {claude->id()});
    EXPECT_EQ(source(claude), SnapshotSource::stale);
    EXPECT_EQ(snapshot(claude)->error, UsageProviderError(Kind::claudeServiceUnavailable));
    EXPECT_EQ(snapshot(claude)->windows.front().usedPercent, 10);
    EXPECT_EQ(state().lastSuccess.at(claude->id()), live);

    executor.advance(Seconds(7200));
    claude->answersKept(70, executor.now() - Seconds(3600));
    refresh(RefreshTrigger::manual, {claude->id()});
    EXPECT_EQ(snapshot(claude)->windows.front().usedPercent, 70);
    EXPECT_EQ(state().lastSuccess.at(claude->id()), executor.now() - Seconds(3600));
    EXPECT_TRUE(snapshot(claude)->mayBeNewer);
    settle();
    EXPECT_EQ(store->history().sampleCount(), 1u);

    // A CLI that repeats its answer has not been read anew.
    claude->answersUsed(71, executor.now());
    refresh(RefreshTrigger::manual, {claude->id()});
    executor.advance(Seconds(30));
    refresh(RefreshTrigger::manual, {claude->id()});
    settle();
    EXPECT_EQ(source(claude), SnapshotSource::live);
    EXPECT_EQ(store->history().sampleCount(), 2u);
}

TEST_F(Schedule, AWindowThatIsLeftOutStaysWithItsAgeForAsLongAsItCounts) {
    makeStore();
    const auto answer = [&](bool withModel, bool incomplete) {
        claude->answers([=, this, now = executor.now()] {
            AgentUsageSnapshot reading = claude->reading(10, now);
            if (withModel) {
                reading.windows.push_back({"fable-weekly", 50, 10080.0, now + Seconds(7200)});
            }
            reading.isIncomplete = incomplete;
            return reading;
        });
        refresh(RefreshTrigger::manual, {claude->id()});
        settle();
        return snapshot(claude)->windows;
    };
    claude->remembered = Seconds(3600);
    EXPECT_EQ(answer(true, false).size(), 2u);
    const Instant seen = executor.now();
    executor.advance(Seconds(1800));
    const auto kept = answer(false, false);
    ASSERT_EQ(kept.size(), 2u);
    EXPECT_EQ(kept[1].readAt, seen);
    EXPECT_EQ(store->history().sampleCount(), 3u) << "both, then the session alone";
    executor.advance(Seconds(1800));
    EXPECT_EQ(answer(false, true).size(), 2u) << "until its reset where the reading broke off";
    EXPECT_EQ(answer(false, false).size(), 1u);
    executor.advance(Seconds(10));
    answer(true, false);
    executor.advance(Seconds(7200));
    EXPECT_EQ(answer(false, true).size(), 1u) << "it is over";
}

TEST_F(Schedule, TellsWhenAnAgentBeginsToRefuseAndWhenItSaysThatItWorksAgain) {
    makeStore();
    const auto entries = [&](std::optional<bool> allowed) {
        codex->answers([=, this, now = executor.now()] {
            AgentUsageSnapshot reading = codex->reading(100, now);
            if (allowed) {
                reading.allowance = UsageAllowance{.ordinaryUsageAllowed = allowed};
            }
            return reading;
        });
        const std::size_t before = store->activity(1).size();
        refresh(RefreshTrigger::manual, {codex->id()});
        executor.advance(Seconds(60));
        const auto all = store->activity(1);
        return std::ranges::count_if(all.begin() + static_cast<std::ptrdiff_t>(before), all.end(),
                                     [](const auto& entry) {
                                         return entry.text.starts_with("The agent refuses") ||
                                                entry.text.starts_with("The agent works again");
                                     });
    };
    EXPECT_EQ(entries(true), 0);
    EXPECT_EQ(entries(false), 1);
    EXPECT_EQ(entries(false), 0);
    EXPECT_EQ(entries(std::nullopt), 0) << "silence is no news";
    EXPECT_EQ(entries(false), 1);
    EXPECT_EQ(entries(true), 1);
}

} // namespace
} // namespace vellmark::tests
