#include "model/UsageJSON.h"
#include "store/ActivityTexts.h"
#include "store/StoreFixture.h"
#include "store/UsageHistory.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace vellmark::tests {
namespace {

class StoredFiles : public StoreFixture {
protected:
    std::string lastEntry() {
        const auto entries = store->activity(1);
        return entries.empty() ? "" : entries.back().text;
    }
};

TEST_F(StoredFiles, TheNextRunShowsTheLastGoodReadingsAtOnce) {
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

TEST_F(StoredFiles, ReadingsBecomeHistoryAndGroundsForForecasts) {
    makeStore();
    for (int reading = 0; reading < 5; ++reading) {
        codex->answersUsed(10 + reading, executor.now());
        refresh(RefreshTrigger::timer, {codex->id()});
        settle(); // written and told before the clock goes on
        executor.advance(Seconds(3000));
    }
    const WindowKey key(codex->id(), "session");
    EXPECT_EQ(store->history().sampleCount(), 5u);
    ASSERT_TRUE(state().recentPoints.contains(key));
    EXPECT_EQ(state().recentPoints.at(key).size(), 3u) << "of the two hours before";
    const unsigned revision = state().historyRevision;

    makeStore();
    ASSERT_TRUE(executor.turnUntil([&] { return state().historyRevision > 0; }));
    EXPECT_EQ(store->history().sampleCount(), 5u);
    EXPECT_EQ(state().recentPoints.at(key).size(), 2u);
    EXPECT_GT(revision, 1u);
}

TEST_F(StoredFiles, TheActivityLogTellsWhatHappened) {
    makeStore();
    codex->fails(UsageProviderError::timeout("Codex"));
    claude->answers([this, now = executor.now()] {
        auto reading = claude->reading(97, now);
        reading.notes = {{SnapshotNote::ClaudeEndMarkerMissing{"line\nbreak\x1b[31m"}}};
        return reading;
    });
    store->setAutomaticHoldUntil(executor.now() + Seconds(10));
    store->refresh(RefreshTrigger::wake, {codex->id(), claude->id()});
    ASSERT_TRUE(executor.turnUntil([this] { return isRetryAwaited(); }));
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

TEST_F(StoredFiles, TheActivityLogCanBeFollowed) {
    makeStore();
    store->setAutomaticHoldUntil(executor.now() + Seconds(10));
    std::vector<std::string> told;
    auto subscription = store->followActivity(30, [&told](ActivityLog::News news) {
        if (news.startsAnew) {
            told.clear();
        }
        for (const ActivityEntry& entry : news.entries) {
            told.push_back(entry.text);
        }
    });
    settle();
    EXPECT_EQ(told, std::vector<std::string>{"Woke from sleep, refreshing in 10 s"});
    store->setEnabled(antigravity->id(), false);
    settle();
    ASSERT_EQ(told.size(), 2u);
    EXPECT_EQ(told[1], "Settings changed: agent switched off");
    // Another process writes in its own language.
    ActivityLog other(machine.activityLogFile());
    ActivityEntry theirs = ActivityTexts::refreshAborted(Localization("de"));
    theirs.time = executor.now();
    other.append(theirs, TimeZone::utc());
    store->lookAtActivity();
    settle();
    EXPECT_EQ(told.back(), "Refresh aborted: Vellmark is quitting");
    subscription.reset();
    store->setEnabled(antigravity->id(), true);
    ASSERT_TRUE(finishRefresh());
    settle();
    EXPECT_EQ(told.size(), 3u);
}

TEST_F(StoredFiles, AnAbortIsLoggedBeforeTheProgramEnds) {
    makeStore();
    codex->holdFetches();
    store->refresh(RefreshTrigger::launch, {codex->id()});
    store->abortRefresh();
    codex->letGo();
    makeStore();
    EXPECT_EQ(lastEntry(), "Refresh aborted: Vellmark is quitting");
}

TEST_F(StoredFiles, WhatStandsInTheirPlaceIsNeitherWrittenNorWaitedFor) {
    const fs::path elsewhere = directory.write("elsewhere", "precious");
    const auto plant = [&](const fs::path& file, const std::string& kind) {
        fs::create_directories(file.parent_path());
        fs::remove_all(file);
        if (kind == "pipe") {
            ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
        } else if (kind == "endless") {
            fs::create_symlink("/dev/zero", file);
        } else if (kind == "link") {
            fs::create_symlink(elsewhere, file);
        } else {
            fs::create_directory(file);
        }
    };
    const std::vector<std::string> names = {"usage-history.json",  "usage-history.json.new",
                                            "usage-history.lock",  "usage-history.waiting",
                                            "last-snapshots.json", "last-snapshots.json.new",
                                            "last-snapshots.lock", "activity.log",
                                            "activity.lock",       "usage-history.removed.json"};
    for (const std::string& name : names) {
        for (const char* kind : {"pipe", "endless", "link", "directory"}) {
            SCOPED_TRACE(name + " " + kind);
            const fs::path file = machine.supportDirectory() / name;
            plant(file, kind);
            const auto before = fs::symlink_status(file);
            makeStore();
            readCodex(10);
            EXPECT_EQ(source(codex), SnapshotSource::live);
            store->activity(1);
            store->trimLog();
            settle();
            store.reset();
            const bool isLog = name.starts_with("activity");
            const bool isWritten = name != "usage-history.waiting"; // only when it is needed
            if (isWritten) {
                EXPECT_TRUE(std::ranges::any_of(troubles, [&](const std::string& text) {
                    return text.find(file.string()) != std::string::npos;
                })) << "it is named";
                EXPECT_TRUE(isLog || contentOf(machine.activityLogFile()).find(file.string()) !=
                                         std::string::npos)
                    << "and logged where that can be";
            }
            EXPECT_EQ(fs::symlink_status(file).type(), before.type());
            EXPECT_EQ(contentOf(elsewhere), "precious");
            fs::remove_all(machine.supportDirectory());
            troubles.clear();
        }
    }
}

TEST_F(StoredFiles, NobodyElseMayReadThemOrTheirDirectories) {
    machine.applicationSupport = directory / "new/.local/share";
    const mode_t before = ::umask(0);
    makeStore();
    readCodex(10);
    ::umask(before);
    for (const char* name : {"usage-history.json", "last-snapshots.json", "activity.log"}) {
        EXPECT_EQ(fs::status(machine.supportDirectory() / name).permissions(), fs::perms(0600))
            << name;
    }
    for (const char* made :
         {"new", "new/.local", "new/.local/share", "new/.local/share/Vellmark"}) {
        EXPECT_EQ(fs::status(directory / made).permissions(), fs::perms(0700)) << made;
    }
}

TEST_F(StoredFiles, AReadingThatCannotBeUnderstoodCostsItsAgentAlone) {
    makeStore();
    claude->answersUsed(42, executor.now());
    codex->answersUsed(17, executor.now());
    refresh(RefreshTrigger::launch, {claude->id(), codex->id()});
    store.reset();
    JSON document = parsedJSON(contentOf(machine.lastSnapshotsFile()));
    JSON& odd = document[document[0]["id"] == "codex" ? 0 : 1];
    odd["updatedAt"] = "2026-11-20T12:00:00Z";
    writeFile(machine.lastSnapshotsFile(), serialized(document));

    makeStore();
    settle();
    EXPECT_EQ(snapshot(claude)->windows.at(0).usedPercent, 42);
    EXPECT_EQ(snapshot(codex), nullptr);
    ASSERT_EQ(troubles.size(), 1u);
    EXPECT_NE(troubles.front().find("Codex"), std::string::npos) << troubles.front();
    claude->answersUsed(43, executor.now());
    refresh(RefreshTrigger::manual, {claude->id()});
    settle();
    EXPECT_EQ(parsedJSON(contentOf(machine.lastSnapshotsFile())).back(), odd) << "it is kept";
    codex->answersUsed(18, executor.now());
    refresh(RefreshTrigger::manual, {codex->id()});
    makeStore();
    EXPECT_EQ(snapshot(codex)->windows.at(0).usedPercent, 18);
    EXPECT_EQ(snapshot(claude)->windows.at(0).usedPercent, 43);
}

TEST_F(StoredFiles, TheLogTellsWhatBecameOfADamagedHistory) {
    writeFile(machine.usageHistoryFile(), "[\n{torn");
    makeStore();
    settle();
    EXPECT_NE(lastEntry().find("usage-history.damaged.json"), std::string::npos);
    EXPECT_EQ(contentOf(machine.supportDirectory() / "usage-history.damaged.json"), "[\n{torn");
}

TEST_F(StoredFiles, SettingsThatCannotBeWrittenAreTold) {
    makeStore();
    fs::create_directory(directory / "preferences.json");
    store->setEnabled(claude->id(), false);
    ASSERT_EQ(troubles.size(), 1u);
    ASSERT_TRUE(state().unwritten);
    EXPECT_EQ(state().unwritten->file.filename(), "preferences.json");
    EXPECT_FALSE(state().enabledProviderIDs.contains(claude->id())) << "for this run";
    fs::remove(directory / "preferences.json");
    readCodex(10);
    EXPECT_FALSE(state().unwritten) << "each refresh tries again";
    store->setEnabled(codex->id(), false);
    EXPECT_EQ(preferences->strings("DisabledProviders")->size(), 2u);
    EXPECT_FALSE(preferences->writeError());
    EXPECT_FALSE(state().unwritten);
}

TEST_F(StoredFiles, WhatFailsIsToldBesideAHistoryThatIsLeftAlone) {
    writeFile(machine.usageHistoryFile(), R"({"version":2})");
    makeStore();
    settle();
    ASSERT_TRUE(state().unwritten);
    EXPECT_EQ(state().unwritten->kind, StorageTrouble::Kind::foreign);
    troubles.clear();
    fs::rename(directory / "Vellmark", directory / "aside");
    directory.write("Vellmark", "a file where the folder should be");
    readCodex(10);
    settle();
    EXPECT_EQ(state().unwritten->kind, StorageTrouble::Kind::failed);
    EXPECT_EQ(troubles.size(), 1u);

    fs::remove(directory / "Vellmark");
    fs::create_directory_symlink(std::string(300, 'x'), directory / "Vellmark");
    readCodex(15);
    EXPECT_EQ(state().unwritten->error, std::errc::filename_too_long);
    EXPECT_EQ(troubles.size(), 2u) << "another reason, once for all files";
    EXPECT_NE(troubles.back().find("activity.log: "), std::string::npos)
        << "which file: " << troubles.back();

    fs::remove(directory / "Vellmark");
    fs::rename(directory / "aside", directory / "Vellmark");
    readCodex(20);
    settle();
    EXPECT_EQ(state().unwritten->kind, StorageTrouble::Kind::foreign);
    EXPECT_EQ(complaints(), 2u);
    EXPECT_EQ(troubles.size(), 2u) << "the history was left alone before";
}

TEST_F(StoredFiles, ADirectoryThatCannotBeWrittenCostsOneEntryAndNoFigures) {
    directory.write("Vellmark", "a file where the folder should be");
    makeStore();
    for (const double used : {10, 11, 12}) {
        readCodex(used);
    }
    EXPECT_EQ(source(codex), SnapshotSource::live);
    EXPECT_EQ(store->history().sampleCount(), 3u) << "charts go on";
    EXPECT_EQ(complaints(), 1u);
    EXPECT_TRUE(state().unwritten);

    fs::remove(directory / "Vellmark");
    readCodex(20);
    settle();
    EXPECT_FALSE(state().unwritten) << "every file is written again";
    makeStore();
    store->flush();
    EXPECT_EQ(store->history().sampleCount(), 4u) << "what was held back has been written";
    EXPECT_EQ(lastEntry(), "Files are being written again");
}

} // namespace
} // namespace vellmark::tests
