#include "probes/ChildSession.h"
#include "store/LastSnapshots.h"
#include "store/StoreFixture.h"
#include "store/UsageHistory.h"
#include "store/UsageHistoryFile.h"
#include "support/HistoryDocument.h"
#include "support/ProjectDirectories.h"

#include <csignal>
#include <cstdlib>
#include <random>
#include <string>
#include <thread>

namespace vellmark::tests {
namespace {

namespace fs = std::filesystem;

/// Starts the writer, lets it work for a moment, and kills it. How many readings it had confirmed.
std::size_t killWriter(const fs::path& directory, int start, Seconds moment) {
    ChildSession writer({.executable = builtProgram("vellmark-history-writer"),
                         .arguments = {directory.string(), std::to_string(start)}},
                        ChildSession::ErrorStream::nullDevice);
    std::string confirmed;
    writer.read(confirmed, Seconds(20)); // it is at work now
    std::this_thread::sleep_for(moment); // the kill is to come at any moment
    ::kill(writer.processIdentifier(), SIGKILL);
    while (writer.read(confirmed, Seconds(20)) == ChildSession::ReadEvent::data) {
    }
    return confirmed.size();
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
    std::uniform_real_distribution<double> moments(0, 0.02);
    std::size_t known = 0;
    const int kills = killCount();
    for (int round = 0; round < kills; ++round) {
        // Within the 35 days that are kept whole, and far enough apart to be recorded.
        const int start = 786'000'000 + round * 2'000;
        const auto confirmed = killWriter(directory.path(), start, Seconds(moments(random)));
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
    ASSERT_EQ(samplesOf(contentOf(path)).size(), known);
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

    std::size_t samplesOnDisk() const {
        return samplesOf(contentOf(machine.usageHistoryFile())).size();
    }
    /// Figures stay, what was on disk stays, one entry says what is wrong, and afterwards
    /// everything is written.
    void showThatNothingIsLost(const std::string& breaking, const std::string& mending) {
        makeStore();
        readCodex(1);
        readCodex(2);
        ASSERT_EQ(samplesOnDisk(), 2u);
        store.reset(); // a file system with files open for writing does not become read-only
        ASSERT_TRUE(run(breaking));
        makeStore();
        for (int used = 3; used < 40; ++used) {
            readCodex(used);
            ASSERT_GE(samplesOnDisk(), 2u) << "valid at any time";
            ASSERT_EQ(snapshot(codex)->windows.at(0).usedPercent, used);
        }
        EXPECT_EQ(source(codex), SnapshotSource::live);
        EXPECT_EQ(store->history().sampleCount(), 39u);
        EXPECT_EQ(complaints(), 1u);
        ASSERT_TRUE(run(mending));
        readCodex(50);
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
