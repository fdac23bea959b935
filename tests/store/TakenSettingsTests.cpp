#include "store/AppSettings.h"
#include "store/StoreFixture.h"
#include "store/UsageHistory.h"

namespace vellmark::tests {
namespace {

/// A store, and the settings in the hands of another program.
class TakenSettings : public StoreFixture {
protected:
    void take() {
        preferences->reload();
        store->takeSettings();
    }
    std::size_t samples() const { return store->history().sampleCount(); }
    std::error_code deleteHistory() {
        std::optional<std::error_code> result;
        store->deleteHistory([&](std::error_code error) { result = error; });
        store->flush();
        executor.turn();
        return result.value_or(std::make_error_code(std::errc::timed_out));
    }

    std::unique_ptr<Preferences> terminal = makePreferencesFile(directory / "preferences.json");
};

TEST_F(TakenSettings, HoldAtOnce) {
    makeStore();
    refresh(RefreshTrigger::launch);
    int changes = 0;
    const auto subscription = store->observe({.willChange = {}, .didChange = [&] { ++changes; }});
    take();
    EXPECT_EQ(changes, 0) << "nothing has changed";

    terminal->setString("FirstFigure", "used");
    terminal->setStrings("ProviderOrder", {"claude"});
    terminal->setMember("DisabledProviders", "codex", true);
    take();
    EXPECT_EQ(state().firstFigure, FirstFigure::used);
    EXPECT_EQ(state().providerOrder.front(), claude->id());
    EXPECT_FALSE(snapshot(codex));
    EXPECT_FALSE(state().isRefreshing);

    const int fetches = codex->fetchCount();
    terminal->setMember("DisabledProviders", "codex", false);
    take();
    ASSERT_TRUE(finishRefresh());
    EXPECT_EQ(codex->fetchCount(), fetches + 1);
    EXPECT_TRUE(snapshot(codex));
}

TEST_F(TakenSettings, AnotherProgramIsReadAnewAndTheOldReadingCountsNoMore) {
    machine = Machine::sandbox(directory.path());
    makeStore();
    refresh(RefreshTrigger::launch);
    const int others = claude->fetchCount();
    codex->answersUsed(11, executor.now());
    codex->holdFetches();
    store->refresh(RefreshTrigger::manual, {codex->id()});
    ASSERT_TRUE(executor.turnUntil([&] { return codex->fetchCount() == 2; }));

    terminal->setString("CodexPath", "/opt/other/codex");
    take();
    EXPECT_EQ(machine.chosenExecutables->of("codex"), "/opt/other/codex");
    EXPECT_TRUE(state().isRefreshing);
    ASSERT_TRUE(executor.turnUntil([&] { return codex->fetchCount() == 3; }));
    codex->letGo();
    ASSERT_TRUE(finishRefresh());
    EXPECT_EQ(claude->fetchCount(), others);
    EXPECT_EQ(source(codex), SnapshotSource::live);
}

TEST_F(TakenSettings, TheHistoryIsDeletedAsAWholeAndKeptAsideUntilTheNextStart) {
    makeStore();
    readCodex(10);
    readCodex(20);
    ASSERT_EQ(samples(), 2U);
    ASSERT_FALSE(state().recentPoints.empty());
    directory.write("Vellmark/usage-history.removed.json", "[]");

    // A reading that ends in the same moment goes too.
    codex->answersUsed(30, executor.now());
    refresh(RefreshTrigger::manual, {codex->id()});
    EXPECT_FALSE(deleteHistory());
    EXPECT_EQ(samples(), 0U);
    EXPECT_TRUE(state().recentPoints.empty());
    EXPECT_FALSE(fs::exists(machine.usageHistoryFile()));
    EXPECT_EQ(source(codex), SnapshotSource::live) << "what is shown now stays";
    const fs::path aside = machine.supportDirectory() / "deleted-history";
    EXPECT_TRUE(fs::exists(aside / "usage-history.json"));
    EXPECT_TRUE(fs::exists(aside / "usage-history.removed.json"));

    executor.advance(Seconds(300));
    readCodex(40);
    EXPECT_EQ(samples(), 1U);
    EXPECT_FALSE(deleteHistory());
    EXPECT_TRUE(fs::exists(machine.supportDirectory() / "deleted-history-2/usage-history.json"))
        << "the first backup is kept too";
    makeStore();
    settle();
    EXPECT_EQ(samples(), 0U);
    EXPECT_TRUE(fs::exists(aside));
    store->discardDeletedHistory();
    settle();
    EXPECT_FALSE(fs::exists(aside));
    EXPECT_FALSE(fs::exists(machine.supportDirectory() / "deleted-history-2"));
}

TEST_F(TakenSettings, AnotherProgramSeesThatTheHistoryIsGone) {
    makeStore();
    readCodex(10);
    readCodex(20);
    auto other = std::move(store);
    makeStore();
    settle();
    ASSERT_EQ(samples(), 2U);
    EXPECT_FALSE(deleteHistory());
    std::swap(store, other);
    readCodex(30);
    EXPECT_EQ(samples(), 1U);
    std::swap(store, other);
    readCodex(40);
    EXPECT_EQ(samples(), 2U) << "both go on with one history";
}

TEST_F(TakenSettings, WhatCannotBeKeptAsideIsNotDeleted) {
    makeStore();
    readCodex(10);
    std::error_code error;
    const auto held = FileLock::acquire(machine.supportDirectory() / "usage-history.lock",
                                        FileLock::Seconds(1), error);
    ASSERT_TRUE(held);
    EXPECT_TRUE(deleteHistory());
    EXPECT_EQ(samples(), 1U);
    EXPECT_TRUE(fs::exists(machine.usageHistoryFile()));
}

} // namespace
} // namespace vellmark::tests
