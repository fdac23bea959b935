#include "store/StoreFixture.h"
#include "store/UsageHistory.h"
#include "store/UsageHistoryRecorder.h"

#include <string>

namespace vellmark::tests {
namespace {

using StoredFiles = StoreFixture;

TEST_F(StoredFiles, theNextRunShowsTheLastGoodReadingsAtOnce) {
    makeStore();
    claude->answersUsed(42, executor.now());
    codex->fails(UsageProviderError(UsageProviderError::Kind::codexNoQuotas));
    refresh(RefreshTrigger::launch);
    const Instant readAt = executor.now();
    executor.advance(Seconds(600));

    makeStore();
    EXPECT_EQ(source(claude), SnapshotSource::stale);
    EXPECT_EQ(snapshot(claude)->windows.at(0).usedPercent, 42);
    EXPECT_EQ(snapshot(claude)->updatedAt, readAt);
    EXPECT_EQ(state().lastSuccess.at(claude->id()), readAt);
    EXPECT_EQ(snapshot(codex), nullptr) << "never read well";

    claude->fails(UsageProviderError::timeout("Claude"));
    refresh(RefreshTrigger::launch, {claude->id()});
    makeStore();
    EXPECT_EQ(snapshot(claude)->windows.at(0).usedPercent, 42) << "a failure overwrites nothing";
    EXPECT_EQ(snapshot(claude)->updatedAt, readAt);
}

TEST_F(StoredFiles, readingsBecomeHistoryAndGroundsForForecasts) {
    makeStore();
    for (int reading = 0; reading < 5; ++reading) {
        codex->answersUsed(10 + reading, executor.now());
        refresh(RefreshTrigger::timer, {codex->id()});
        executor.advance(Seconds(3000));
    }
    settle();
    const WindowKey key(codex->id(), "session");
    EXPECT_EQ(store->history().sampleCount(), 5u);
    ASSERT_TRUE(state().recentPoints.contains(key));
    EXPECT_EQ(state().recentPoints.at(key).size(), 2u) << "of the last two hours";
    const unsigned revision = state().historyRevision;

    makeStore();
    ASSERT_TRUE(executor.turnUntil([&] { return state().historyRevision > 0; }));
    EXPECT_EQ(store->history().sampleCount(), 5u);
    EXPECT_EQ(state().recentPoints.at(key).size(), 2u);
    EXPECT_GT(revision, 1u);
}

TEST_F(StoredFiles, whatAnotherProcessHasRecordedIsShownWithTheNextReading) {
    makeStore();
    const auto read = [this](double used) {
        codex->answersUsed(used, executor.now());
        store->refresh(RefreshTrigger::manual, {codex->id()});
        ASSERT_TRUE(finishRefresh());
        store->flush();
        executor.turn();
        executor.advance(Seconds(60));
    };
    read(10);
    UsageHistoryRecorder another(machine.usageHistoryFile(), std::make_shared<UsageHistory>());
    another.load(executor.now());
    another.record(codex->reading(11, executor.now()));
    const unsigned revision = state().historyRevision;
    read(11); // the same figure: nothing of its own to record
    EXPECT_EQ(store->history().sampleCount(), 2u);
    EXPECT_EQ(state().historyRevision, revision + 1);
    EXPECT_EQ(state().recentPoints.at({codex->id(), "session"}).size(), 2u);
}

TEST_F(StoredFiles, theActivityLogTellsWhatHappened) {
    makeStore();
    codex->fails(UsageProviderError::timeout("Codex"));
    claude->answers([this, now = executor.now()] {
        auto reading = claude->reading(97, now);
        reading.notes = {{SnapshotNote::ClaudeEndMarkerMissing{"line\nbreak\x1b[31m"}}};
        return reading;
    });
    store->setAutomaticHoldUntil(executor.now() + Seconds(10));
    store->refresh(RefreshTrigger::wake, {codex->id(), claude->id()});
    ASSERT_TRUE(executor.turnUntil([&] { return executor.timerCount() == 1; }));
    executor.advance(Seconds(20));
    ASSERT_TRUE(finishRefresh());
    codex->answersUsed(5, executor.now());
    refresh(RefreshTrigger::manual, {codex->id()});
    store->setEnabled(antigravity->id(), false);

    std::string told;
    for (const ActivityEntry& entry : store->activity(1)) {
        told += (entry.agent ? entry.agent->rawValue : "vellmark") + ": " + entry.text + "\n";
    }
    for (const char* expected :
         {"vellmark: Woke from sleep", "vellmark: Refresh started (after sleep)",
          "codex: Trying again in 20 s", "claude: Session 3% left",
          "claude: Session is critical: 3% left",
          "claude: End of the usage page not recognised; it ended with “line break”",
          "vellmark: Refresh finished (after sleep): 1 of 2 agents read in 20.0 s",
          "codex: Readable again after one failed attempt",
          "antigravity: Settings changed: agent switched off"}) {
        EXPECT_NE(told.find(expected), std::string::npos) << expected << "\nin\n" << told;
    }
    const std::string exported = store->activityExportText(30);
    EXPECT_TRUE(exported.starts_with("Vellmark ")) << exported;
    EXPECT_NE(exported.find("info codex: Readable again"), std::string::npos);
}

TEST_F(StoredFiles, anAbortIsLoggedBeforeTheProgramEnds) {
    makeStore();
    codex->holdFetches();
    store->refresh(RefreshTrigger::launch, {codex->id()});
    store->abortRefresh();
    codex->letGo();
    makeStore();
    const auto entries = store->activity(1);
    ASSERT_FALSE(entries.empty());
    EXPECT_EQ(entries.back().text, "Refresh aborted: Vellmark is quitting");
}

TEST_F(StoredFiles, nobodyElseMayReadThem) {
    makeStore();
    refresh(RefreshTrigger::launch);
    store->flush();
    for (const char* name : {"usage-history.json", "last-snapshots.json", "activity.log"}) {
        EXPECT_EQ(std::filesystem::status(machine.supportDirectory() / name).permissions(),
                  std::filesystem::perms(0600))
            << name;
    }
}

TEST_F(StoredFiles, aLinkToAnotherDiskStaysOne) {
    const std::filesystem::path elsewhere = directory.write("elsewhere.json", "[]");
    std::filesystem::create_directories(machine.supportDirectory());
    std::filesystem::create_symlink(elsewhere, machine.lastSnapshotsFile());
    makeStore();
    refresh(RefreshTrigger::launch);
    store->flush();
    EXPECT_TRUE(std::filesystem::is_symlink(machine.lastSnapshotsFile()));
    EXPECT_GT(std::filesystem::file_size(elsewhere), 2u);
}

TEST_F(StoredFiles, aDirectoryThatCannotBeWrittenCostsOneEntryAndNoFigures) {
    directory.write("Vellmark", "a file where the folder should be");
    makeStore();
    for (const double used : {10, 11, 12}) {
        readCodex(used);
    }
    EXPECT_EQ(source(codex), SnapshotSource::live);
    EXPECT_EQ(store->history().sampleCount(), 3u) << "charts go on";
    EXPECT_EQ(complaints(), 1u);

    std::filesystem::remove(directory / "Vellmark");
    readCodex(20);
    makeStore();
    store->flush();
    EXPECT_EQ(store->history().sampleCount(), 4u) << "what was held back has been written";
    EXPECT_EQ(store->activity(1).back().text, "Files are being written again");
}

} // namespace
} // namespace vellmark::tests
