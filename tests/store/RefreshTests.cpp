#include "platform/ProgramEnd.h"
#include "process/BoundedProcess.h"
#include "store/LastSnapshots.h"
#include "store/StoreFixture.h"
#include "store/UsageFetcher.h"
#include "support/ProcessCensus.h"

#include <cstdlib>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace vellmark::tests {
namespace {

using Refresh = StoreFixture;

/// "codex claude", in the order in which they are shown.
std::string shownIDs(const UsageState& state) {
    std::string ids;
    for (const AgentUsageSnapshot& snapshot : state.snapshots) {
        ids += (ids.empty() ? "" : " ") + snapshot.id.rawValue;
    }
    return ids;
}

TEST_F(Refresh, PublishesEachAgentAsSoonAsItIsRead) {
    makeStore();
    claude->holdFetches();
    EXPECT_TRUE(state().snapshots.empty());

    store->refresh(RefreshTrigger::launch);
    EXPECT_TRUE(state().isRefreshing);
    EXPECT_EQ(state().refreshProgress, 0);
    EXPECT_EQ(shownIDs(state()), "codex claude antigravity");
    EXPECT_EQ(source(claude), SnapshotSource::loading);

    ASSERT_TRUE(executor.turnUntil([&] {
        return source(codex) == SnapshotSource::live && source(antigravity) == SnapshotSource::live;
    }));
    EXPECT_EQ(source(claude), SnapshotSource::loading) << "the slowest delays nobody";
    EXPECT_DOUBLE_EQ(state().refreshProgress, 2.0 / 3);
    EXPECT_FALSE(state().lastRefreshCompletedAt);

    claude->letGo();
    ASSERT_TRUE(finishRefresh());
    EXPECT_EQ(source(claude), SnapshotSource::live);
    EXPECT_EQ(state().refreshProgress, 1);
    EXPECT_EQ(state().lastRefreshCompletedAt, executor.now());

    claude->holdFetches();
    store->refresh(RefreshTrigger::manual);
    EXPECT_EQ(source(claude), SnapshotSource::live) << "figures stay while they are read anew";
    EXPECT_FALSE(snapshot(claude)->windows.empty());
}

TEST_F(Refresh, AgentsWaitForWhatIsBeingDrawn) {
    drawingTime = Seconds(0.1);
    makeStore();
    const auto fetches = [this] {
        return codex->fetchCount() + claude->fetchCount() + antigravity->fetchCount();
    };
    store->refresh(RefreshTrigger::launch);
    EXPECT_TRUE(state().isRefreshing);
    EXPECT_EQ(source(claude), SnapshotSource::loading);
    executor.advance(Seconds(0.09));
    EXPECT_EQ(fetches(), 0);
    executor.advance(Seconds(0.01));
    ASSERT_TRUE(finishRefresh());
    EXPECT_EQ(fetches(), 3);

    executor.advance(Seconds(300));
    store->refresh(RefreshTrigger::window);
    store->abortRefresh();
    executor.advance(Seconds(1));
    EXPECT_EQ(fetches(), 3);
}

TEST_F(Refresh, AFailureKeepsTheLastGoodFiguresAsStale) {
    makeStore();
    codex->fails(UsageProviderError(UsageProviderError::Kind::codexNoQuotas));
    claude->answersUsed(42, executor.now());
    refresh(RefreshTrigger::launch);
    EXPECT_EQ(source(codex), SnapshotSource::stale);
    EXPECT_TRUE(snapshot(codex)->windows.empty());
    EXPECT_FALSE(state().lastSuccess.contains(codex->id()));

    const AgentUsageSnapshot good = *snapshot(claude);
    claude->fails(UsageProviderError(UsageProviderError::Kind::claudeNotLoggedIn));
    executor.advance(Seconds(300));
    refresh(RefreshTrigger::timer);
    const AgentUsageSnapshot& failed = *snapshot(claude);
    EXPECT_EQ(failed.source, SnapshotSource::stale);
    EXPECT_EQ(failed.windows, good.windows);
    EXPECT_EQ(failed.accountLabel, good.accountLabel);
    EXPECT_EQ(failed.plan, good.plan);
    EXPECT_EQ(failed.updatedAt, executor.now()) << "the time of the attempt";
    EXPECT_EQ(failed.error, UsageProviderError(UsageProviderError::Kind::claudeNotLoggedIn));
    EXPECT_EQ(state().lastSuccess.at(claude->id()), good.updatedAt);

    claude->answersUsed(43, executor.now());
    refresh(RefreshTrigger::timer);
    EXPECT_FALSE(snapshot(claude)->error);
    EXPECT_EQ(source(claude), SnapshotSource::live);
}

TEST_F(Refresh, WhateverAProbeThrowsBecomesAnError) {
    makeStore();
    codex->answers([]() -> AgentUsageSnapshot { throw std::runtime_error("no such luck"); });
    claude->answers([]() -> AgentUsageSnapshot { throw 42; });
    refresh(RefreshTrigger::launch);
    EXPECT_EQ(snapshot(codex)->error, UsageProviderError::other("no such luck"));
    ASSERT_TRUE(snapshot(claude)->error);
    EXPECT_FALSE(snapshot(claude)->error->texts().at(0).empty());
    EXPECT_EQ(source(antigravity), SnapshotSource::live);
}

// Whatever an agent lets slip: nothing of it is shown, nor kept in the log or with the readings.
TEST_F(Refresh, NoFailureCarriesASecret) {
    makeStore();
    const std::string secret = "Authorization: Bearer abc123 of ada@example.org in /home/berta/x";
    codex->fails(UsageProviderError::codexReadFailed(secret));
    claude->fails(UsageProviderError::claudeReadFailed(1, secret));
    antigravity->answers([&]() -> AgentUsageSnapshot { throw std::runtime_error(secret); });
    refresh(RefreshTrigger::launch);
    const std::string redacted = "Authorization: Bearer <redacted> of …@… in ~/x";
    for (const auto& agent : {codex, claude, antigravity}) {
        ASSERT_TRUE(snapshot(agent)->error);
        EXPECT_EQ(snapshot(agent)->error->texts().at(0), redacted) << agent->id().rawValue;
    }
}

TEST_F(Refresh, ARequestDuringARefreshIsMergedIntoIt) {
    makeStore();
    for (const auto& agent : {codex, claude, antigravity}) {
        agent->holdFetches();
    }
    store->refresh(RefreshTrigger::launch, {codex->id()});
    EXPECT_EQ(shownIDs(state()), "codex");
    store->refresh(RefreshTrigger::settings, {claude->id()});
    store->refresh(RefreshTrigger::timer);
    EXPECT_EQ(state().snapshots.size(), 3u);
    store->refresh(RefreshTrigger::manual);
    for (const auto& agent : {codex, claude, antigravity}) {
        agent->letGo();
    }
    ASSERT_TRUE(finishRefresh());
    for (const auto& agent : {codex, claude, antigravity}) {
        EXPECT_EQ(agent->fetchCount(), 1);
    }
}

TEST_F(Refresh, WhatIsReadCanBeReadAgainAndIsKeptWhileAnotherAgentHangs) {
    makeStore();
    claude->holdFetches();
    codex->fails(UsageProviderError(UsageProviderError::Kind::codexNoQuotas));
    store->refresh(RefreshTrigger::timer);
    const auto othersEnded = [&] {
        return source(codex) == SnapshotSource::stale &&
               source(antigravity) == SnapshotSource::live;
    };
    ASSERT_TRUE(executor.turnUntil(othersEnded));
    store->flush();
    const auto kept = LastSnapshots(machine.supportDirectory() / "last-snapshots.json").read();
    ASSERT_EQ(kept.size(), 1u) << "the program may not live to see the refresh's end";
    EXPECT_EQ(kept.front().id, antigravity->id());

    codex->answersUsed(42, executor.now());
    store->refresh(RefreshTrigger::window);
    EXPECT_EQ(codex->fetchCount(), 1) << "it was read a moment ago";
    store->refresh(RefreshTrigger::timer);
    EXPECT_TRUE(executor.turnUntil([&] { return source(codex) == SnapshotSource::live; }));
    EXPECT_EQ(codex->fetchCount(), 2);
    executor.advance(Seconds(60));
    store->refresh(RefreshTrigger::window);
    EXPECT_TRUE(executor.turnUntil([&] { return codex->fetchCount() == 3; }));
    EXPECT_TRUE(state().isRefreshing);
    claude->letGo();
    ASSERT_TRUE(finishRefresh());
    EXPECT_EQ(claude->fetchCount(), 1);
}

TEST_F(Refresh, AFetchWithoutEndIsATimeOutAndMayBeTriedAgain) {
    makeStore();
    claude->holdFetches();
    // The others have been read, and the fetch that hangs has begun to.
    const auto onlyClaudeIsLeft = [&](int attempt) {
        return executor.turnUntil(
            [&] { return claude->fetchCount() == attempt && state().refreshProgress > 0.6; });
    };
    store->refresh(RefreshTrigger::timer);
    ASSERT_TRUE(onlyClaudeIsLeft(1));
    executor.advance(UsageFetcher::fetchLimit - Seconds(1));
    EXPECT_TRUE(state().isRefreshing);
    executor.advance(Seconds(1));
    EXPECT_FALSE(state().isRefreshing);
    ASSERT_TRUE(snapshot(claude) && snapshot(claude)->error);
    EXPECT_EQ(snapshot(claude)->error->kind(), UsageProviderError::Kind::timeout);

    // Stuck threads do not pile up without end, and the others' figures go on being fresh.
    for (int attempt = 2; attempt <= UsageFetcher::mostStuck; ++attempt) {
        store->refresh(RefreshTrigger::timer);
        ASSERT_TRUE(onlyClaudeIsLeft(attempt));
        executor.advance(UsageFetcher::fetchLimit);
        ASSERT_TRUE(finishRefresh());
        EXPECT_EQ(codex->fetchCount(), attempt);
    }
    refresh(RefreshTrigger::timer);
    EXPECT_EQ(claude->fetchCount(), UsageFetcher::mostStuck);
    ASSERT_TRUE(snapshot(claude)->error);

    // What they may still bring is late and nobody's; then all is as before.
    claude->letGo();
    ASSERT_TRUE(executor.turnUntil([&] {
        if (!state().isRefreshing) {
            store->refresh(RefreshTrigger::manual, {claude->id()});
        }
        return source(claude) == SnapshotSource::live;
    }));
    EXPECT_FALSE(snapshot(claude)->error);
}

TEST_F(Refresh, AutomaticTriggersRespectHoldAndPause) {
    makeStore();
    store->setAutomaticHoldUntil(executor.now() + Seconds(10));
    store->refresh(RefreshTrigger::timer);
    store->refresh(RefreshTrigger::window);
    EXPECT_FALSE(state().isRefreshing);
    store->refresh(RefreshTrigger::wake);
    EXPECT_TRUE(state().isRefreshing) << "only timer and window are held";
    ASSERT_TRUE(finishRefresh());

    executor.advance(Seconds(59));
    store->refresh(RefreshTrigger::window);
    EXPECT_FALSE(state().isRefreshing);
    executor.advance(Seconds(1));
    store->refresh(RefreshTrigger::window);
    EXPECT_TRUE(state().isRefreshing);
    ASSERT_TRUE(finishRefresh());

    executor.setNow(executor.now() - Seconds(86'400));
    store->refresh(RefreshTrigger::window);
    EXPECT_TRUE(state().isRefreshing) << "a clock that was set back must not hold refreshes";
    ASSERT_TRUE(finishRefresh());
}

TEST_F(Refresh, OneAgentReadAloneMakesTheOthersNoNewer) {
    makeStore();
    refresh(RefreshTrigger::launch);
    const auto completed = state().lastRefreshCompletedAt;
    executor.advance(Seconds(300));

    claude->holdFetches();
    store->refresh(RefreshTrigger::manual, {claude->id()});
    EXPECT_EQ(state().reading, std::set{claude->id()});
    claude->letGo();
    ASSERT_TRUE(finishRefresh());
    EXPECT_TRUE(state().reading.empty());
    EXPECT_EQ(codex->fetchCount(), 1);
    EXPECT_EQ(claude->fetchCount(), 2);
    EXPECT_TRUE(state().readingTook.contains(claude->id()));
    EXPECT_EQ(state().lastRefreshCompletedAt, completed);

    store->refresh(RefreshTrigger::window);
    ASSERT_TRUE(finishRefresh());
    EXPECT_EQ(claude->fetchCount(), 2) << "it was read a moment ago";
    EXPECT_EQ(codex->fetchCount(), 2) << "the others were not";
    EXPECT_EQ(state().lastRefreshCompletedAt, executor.now());

    executor.advance(Seconds(300));
    claude->holdFetches();
    store->refresh(RefreshTrigger::manual, {claude->id()});
    store->refresh(RefreshTrigger::timer);
    claude->letGo();
    ASSERT_TRUE(finishRefresh());
    EXPECT_EQ(state().lastRefreshCompletedAt, executor.now()) << "it has become one of all";
}

TEST_F(Refresh, ATimeoutIsRetriedOnceWhereTheAgentAsksForIt) {
    makeStore();
    codex->fails(UsageProviderError::timeout("Codex"));
    claude->fails(UsageProviderError::timeout("Claude"));
    store->refresh(RefreshTrigger::launch);
    ASSERT_TRUE(executor.turnUntil([this] { return isRetryAwaited(); }));
    ASSERT_TRUE(executor.turnUntil([&] { return source(claude) == SnapshotSource::stale; }));
    EXPECT_TRUE(state().isRefreshing);
    EXPECT_EQ(source(codex), SnapshotSource::loading);

    executor.advance(Seconds(19));
    EXPECT_EQ(codex->fetchCount(), 1);
    executor.advance(Seconds(1));
    ASSERT_TRUE(finishRefresh());
    EXPECT_EQ(codex->fetchCount(), 2);
    EXPECT_EQ(claude->fetchCount(), 1);
    EXPECT_EQ(snapshot(codex)->error, UsageProviderError::timeout("Codex"));
    EXPECT_EQ(executor.timerCount(), 0u);
}

TEST_F(Refresh, DisablingDuringAFetchDropsItsResult) {
    makeStore();
    codex->holdFetches();
    store->refresh(RefreshTrigger::launch);
    ASSERT_TRUE(executor.turnUntil(
        [&] { return state().refreshProgress > 0.6 && codex->fetchCount() == 1; }));
    store->setEnabled(codex->id(), false);
    EXPECT_FALSE(state().isRefreshing) << "nothing else was under way";
    EXPECT_EQ(snapshot(codex), nullptr);

    codex->letGo();
    refresh(RefreshTrigger::manual);
    EXPECT_EQ(snapshot(codex), nullptr);
    EXPECT_EQ(codex->fetchCount(), 1);

    store->setEnabled(codex->id(), true);
    EXPECT_TRUE(state().isRefreshing);
    ASSERT_TRUE(finishRefresh());
    EXPECT_EQ(source(codex), SnapshotSource::live);
    EXPECT_EQ(claude->fetchCount(), 2) << "only the enabled agent is read";
}

TEST_F(Refresh, AnAnswerOfADisabledAgentsOldFetchIsNotTakenForTheNewOne) {
    makeStore();
    codex->holdFetches();
    codex->answersUsed(11, executor.now());
    store->refresh(RefreshTrigger::launch, {codex->id()});
    ASSERT_TRUE(executor.turnUntil([&] { return codex->fetchCount() == 1; }));
    store->setEnabled(codex->id(), false);
    store->setEnabled(codex->id(), true);
    ASSERT_TRUE(executor.turnUntil([&] { return codex->fetchCount() == 2; }));
    codex->letGo();
    ASSERT_TRUE(finishRefresh());
    int readings = 0;
    for (const ActivityEntry& entry : store->activity(1)) {
        readings += entry.agent == codex->id() && entry.text.find("% left") != std::string::npos;
    }
    EXPECT_EQ(readings, 1);
}

TEST_F(Refresh, NothingLandsAfterAnAbort) {
    makeStore();
    codex->fails(UsageProviderError::timeout("Codex"));
    claude->holdFetches();
    store->refresh(RefreshTrigger::launch);
    ASSERT_TRUE(executor.turnUntil([&] {
        return source(antigravity) == SnapshotSource::live && claude->fetchCount() == 1 &&
               isRetryAwaited();
    }));
    EXPECT_EQ(executor.timerCount(), 2u) << "the retry, and the limit of Claude's fetch";
    store->flush();
    executor.turn(); // also what the history has to tell
    store->abortRefresh();
    EXPECT_FALSE(state().isRefreshing);
    EXPECT_EQ(executor.timerCount(), 0u) << "a waiting retry is given up, and the limit";
    EXPECT_EQ(shownIDs(state()), "antigravity");

    int changes = 0;
    const auto subscription =
        store->observe({.willChange = nullptr, .didChange = [&] { ++changes; }});
    claude->letGo();
    executor.advance(Seconds(60));
    store->refresh(RefreshTrigger::manual);
    executor.turn();
    EXPECT_EQ(changes, 0);
    EXPECT_EQ(claude->fetchCount(), 1);
}

TEST_F(Refresh, AnAbortEndsTheChildrenOfTheFetches) {
    makeStore();
    const ChildConfiguration sleeper{.executable = "/bin/sleep", .arguments = {"60"}};
    claude->answers([&, now = executor.now()] {
        // A probe that goes on to a second child after the first one was stopped.
        BoundedProcess::run(sleeper, Seconds(60), Seconds(3));
        BoundedProcess::run(sleeper, Seconds(60), Seconds(3));
        return claude->reading(1, now);
    });
    store->refresh(RefreshTrigger::launch, {claude->id()});
    ASSERT_TRUE(becomesTrue([] { return livingChildCount() == 1; }));
    store->abortRefresh();
    EXPECT_TRUE(becomesTrue([] { return livingChildCount() == 0; }));
    store.reset();
    EXPECT_EQ(livingChildCount(), 0u);
    EXPECT_FALSE(hasZombieChild());
}

TEST_F(Refresh, ObserversAreToldBeforeAndAfterAndMayComeAndGo) {
    makeStore();
    std::vector<std::string> told;
    std::shared_ptr<AgentUsageStore::Subscription> late;
    auto first = store->observe(
        {.willChange = [&] { told.push_back(state().isRefreshing ? "will on" : "will off"); },
         .didChange =
             [&] {
                 told.push_back(state().isRefreshing ? "did on" : "did off");
                 late = store->observe({.willChange = nullptr, .didChange = nullptr});
             }});
    codex->holdFetches();
    store->refresh(RefreshTrigger::launch, {codex->id()});
    EXPECT_EQ(told, (std::vector<std::string>{"will off", "did on"}));
    first.reset();
    codex->letGo();
    ASSERT_TRUE(finishRefresh());
    EXPECT_EQ(told.size(), 2u);
    store.reset();
    late.reset(); // a subscription may outlive the store
}

TEST_F(Refresh, SettingsSurviveInThePreferences) {
    makeStore();
    store->setEnabled(claude->id(), false);
    store->setProviderOrder({antigravity->id(), AgentProviderID("unknown"), codex->id()});
    makeStore();
    EXPECT_EQ(state().enabledProviderIDs, (std::set{codex->id(), antigravity->id()}));
    EXPECT_EQ(state().providerOrder, (std::vector{antigravity->id(), codex->id(), claude->id()}));
    store->refresh(RefreshTrigger::launch);
    EXPECT_EQ(shownIDs(state()), "antigravity codex");

    makeStore(std::set{claude->id()});
    EXPECT_EQ(state().enabledProviderIDs, std::set{claude->id()}) << "the configuration wins";
}

TEST_F(Refresh, SettingsRefreshesAndTerminationMayRace) {
    std::mt19937 random(7);
    const auto chance = [&](int of) { return random() % static_cast<unsigned>(of) == 0; };
    const std::vector agents = {codex, claude, antigravity};
    for (int round = 0; round < 40; ++round) {
        drawingTime = Seconds(round % 2 * 10);
        makeStore();
        store->refresh(RefreshTrigger::launch);
        for (int step = 0; step < 20; ++step) {
            const auto& agent = agents[random() % agents.size()];
            chance(2) ? agent->holdFetches() : agent->letGo();
            if (chance(3)) {
                agent->fails(UsageProviderError::timeout("late"));
            } else {
                agent->answersUsed(static_cast<double>(random() % 100), executor.now());
            }
            if (chance(2)) {
                store->refresh(chance(2) ? RefreshTrigger::manual : RefreshTrigger::timer);
            }
            if (chance(4)) {
                store->setEnabled(agent->id(), chance(2));
            }
            if (chance(5)) {
                store->setProviderOrder({agent->id()});
            }
            if (chance(3)) {
                executor.advance(Seconds(static_cast<double>(random() % 40)));
            }
            if (chance(8)) {
                store->trimLog();
            }
            executor.turn();
        }
        if (chance(2)) {
            store->abortRefresh();
        }
        // Fetches are let go while the store goes.
        std::thread release([&] {
            for (const auto& agent : agents) {
                agent->letGo();
            }
        });
        store.reset();
        release.join();
        executor.advance(Seconds(60));
        EXPECT_EQ(executor.timerCount(), 0u);
    }
}

/// Ends the program, which would destroy what a thread that was left behind may be using: told by
/// the status 9.
[[noreturn]] void endAfterDestroyingFetcher(bool isStuck) {
    std::atexit([] { ::_exit(9); });
    HandTurnedExecutor executor;
    const auto agent = std::make_shared<StubAgent>("agent");
    if (isStuck) {
        agent->holdFetches();
    }
    {
        UsageFetcher fetcher(executor, "/home/jo");
        bool isOver = false;
        fetcher.start(std::make_shared<StubProvider>(agent), "Agent",
                      UsageFetcher::Occasion::byHand, [&](const FetchOutcome&) { isOver = true; });
        while (!isStuck && !isOver) {
            executor.turn();
        }
        executor.advance(UsageFetcher::fetchLimit);
    }
    endProgram(4);
}

TEST(UsageFetcherDeathTest, NothingIsDestroyedUnderAFetchThatIsLeftBehind) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(endAfterDestroyingFetcher(true), testing::ExitedWithCode(4), "");
    EXPECT_EXIT(endAfterDestroyingFetcher(false), testing::ExitedWithCode(9), "");
}

} // namespace
} // namespace vellmark::tests
