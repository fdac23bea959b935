#include "model/UsageJSON.h"
#include "platform/Descriptor.h"
#include "store/LastSnapshots.h"
#include "store/StoreFixture.h"
#include "store/UsageHistory.h"
#include "store/UsageHistoryFile.h"
#include "support/ProjectDirectories.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <random>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

extern char** environ;

namespace vellmark::tests {
namespace {

namespace fs = std::filesystem;

/// Starts the writer, lets it work for a moment, and kills it. How many readings it had confirmed.
std::size_t killWriter(const fs::path& directory, int start, std::chrono::microseconds moment) {
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0) {
        return 0;
    }
    const Descriptor reading(ends[0]);
    Descriptor writing(ends[1]);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, writing.get(), STDOUT_FILENO);
    posix_spawn_file_actions_addclose(&actions, reading.get());
    const std::string program = builtProgram("vellmark-history-writer");
    std::string place = directory;
    std::string from = std::to_string(start);
    std::string name = program;
    std::array<char*, 4> arguments{name.data(), place.data(), from.data(), nullptr};
    pid_t pid = -1;
    const int error =
        ::posix_spawn(&pid, program.c_str(), &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    writing.reset();
    if (error != 0) {
        return 0;
    }
    std::array<char, 4096> bytes{};
    std::size_t confirmed = 0;
    ssize_t count = ::read(reading.get(), bytes.data(), 1); // it is at work now
    confirmed += count > 0 ? 1 : 0;
    std::this_thread::sleep_for(moment); // the kill is to come at any moment
    ::kill(pid, SIGKILL);
    while ((count = ::read(reading.get(), bytes.data(), bytes.size())) > 0) {
        confirmed += static_cast<std::size_t>(count);
    }
    ::waitpid(pid, nullptr, 0);
    return confirmed;
}

/// scripts/fault-tests asks for a thousand.
int killCount() {
    const char* wanted = std::getenv("VELLMARK_KILLS");
    return wanted ? std::atoi(wanted) : 25;
}

TEST(StorageFaults, aKillCostsTheSampleInFlightAtMost) {
    const TemporaryDirectory directory;
    const fs::path path = directory / "usage-history.json";
    std::mt19937 random(std::random_device{}());
    std::uniform_int_distribution<int> moments(0, 20'000);
    std::size_t known = 0;
    const int kills = killCount();
    for (int round = 0; round < kills; ++round) {
        // Within the 35 days that are kept whole, and far enough apart to be recorded.
        const int start = 786'000'000 + round * 2'000;
        const std::size_t confirmed =
            killWriter(directory.path(), start, std::chrono::microseconds(moments(random)));
        ASSERT_GT(confirmed, 0u) << "the writer did not work";
        UsageHistoryFile file(path);
        std::error_code error;
        const auto held = file.lock(Seconds(5), error);
        ASSERT_TRUE(held) << "a kill gives the lock back: " << error.message();
        std::size_t found = 0;
        const auto status = file.catchUp(
            &*held, {.restart = [&] { found = 0; }, .sample = [&](const auto&) { ++found; }});
        ASSERT_FALSE(status.error) << status.error.message();
        ASSERT_GE(found, known + confirmed) << "round " << round;
        ASSERT_LE(found, known + confirmed + 1) << "round " << round;
        ASSERT_EQ(LastSnapshots(directory / "last-snapshots.json").read().size(), 1u);
        known = found;
    }
    ASSERT_EQ(historyFromDocument(contentOf(path)).size(), known);
    std::printf("%d kills, %zu samples, none of them lost\n", kills, known);
}

/// A store on a file system of its own that is small and can be made read-only. Needs root.
class SmallDisk : public StoreFixture {
protected:
    void SetUp() override {
        if (!run("mount -t tmpfs -o size=512k tmpfs " + disk())) {
            GTEST_SKIP() << "mounting a small file system needs root";
        }
        isMounted_ = true;
        machine.applicationSupport = directory.path();
    }
    void TearDown() override {
        StoreFixture::TearDown();
        if (isMounted_) {
            run("umount " + disk());
        }
    }
    std::string disk() const { return directory.path().string(); }
    static bool run(const std::string& command) {
        return std::system(("{ " + command + "; } >/dev/null 2>&1").c_str()) == 0;
    }

    void refresh(double used) {
        codex->answersUsed(used, executor.now());
        store->refresh(RefreshTrigger::manual, {codex->id()});
        ASSERT_TRUE(finishRefresh());
        store->flush();
        executor.turn();
        executor.advance(Seconds(300));
    }
    std::size_t samplesOnDisk() const {
        return historyFromDocument(contentOf(machine.usageHistoryFile())).size();
    }
    std::size_t complaints() {
        return static_cast<std::size_t>(
            std::ranges::count_if(store->activity(1), [](const ActivityEntry& entry) {
                return entry.text.starts_with("Files cannot be written");
            }));
    }

    /// Figures stay, what was on disk stays, one entry says what is wrong, and afterwards
    /// everything is written.
    void showThatNothingIsLost(const std::string& breaking, const std::string& mending) {
        makeStore();
        refresh(1);
        refresh(2);
        ASSERT_EQ(samplesOnDisk(), 2u);
        store.reset(); // a file system with files open for writing does not become read-only
        ASSERT_TRUE(run(breaking));
        makeStore();
        for (int used = 3; used < 40; ++used) {
            refresh(used);
            ASSERT_GE(samplesOnDisk(), 2u) << "valid at any time";
            ASSERT_EQ(snapshot(codex)->windows.at(0).usedPercent, used);
        }
        EXPECT_EQ(source(codex), SnapshotSource::live);
        EXPECT_EQ(store->history().sampleCount(), 39u);
        EXPECT_EQ(complaints(), 1u);
        ASSERT_TRUE(run(mending));
        refresh(50);
        EXPECT_EQ(samplesOnDisk(), 40u);
        makeStore();
        store->flush();
        EXPECT_EQ(store->history().sampleCount(), 40u);
        EXPECT_EQ(complaints(), 1u);
        EXPECT_EQ(snapshot(codex)->windows.at(0).usedPercent, 50);
    }

private:
    bool isMounted_ = false;
};

TEST_F(SmallDisk, thatIsFull) {
    // dd fails for want of room, which is what it is for.
    showThatNothingIsLost("dd if=/dev/zero of=" + disk() + "/filler bs=1k; test -s " + disk() +
                              "/filler",
                          "rm " + disk() + "/filler");
}

TEST_F(SmallDisk, thatIsReadOnly) {
    showThatNothingIsLost("mount -o remount,ro " + disk(), "mount -o remount,rw " + disk());
}

} // namespace
} // namespace vellmark::tests
