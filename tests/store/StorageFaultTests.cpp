#include "process/ChildSession.h"
#include "store/LastSnapshots.h"
#include "store/StoreFixture.h"
#include "store/UsageHistory.h"
#include "store/UsageHistoryFile.h"
#include "store/UsageHistoryRecorder.h"
#include "support/HistoryDocument.h"
#include "support/ProjectDirectories.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <thread>

namespace vellmark::tests {
namespace {

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

/// How often a fault is brought about; scripts/faults asks for a thousand of each.
int faultCount(int usually) {
    const char* wanted = std::getenv("VELLMARK_FAULTS");
    return wanted ? std::atoi(wanted) : usually;
}

TEST(StorageFaults, AKillCostsTheSampleInFlightAtMost) {
    const TemporaryDirectory directory;
    const fs::path path = directory / "usage-history.json";
    std::mt19937 random(std::random_device{}());
    std::uniform_real_distribution<double> moments(0, 0.02);
    std::size_t known = 0;
    const int kills = faultCount(25);
    for (int round = 0; round < kills; ++round) {
        // Within the 35 days that are kept whole, and far enough apart to be recorded.
        const int start = 786'000'000 + round * 2'000;
        const auto confirmed = killWriter(directory.path(), start, Seconds(moments(random)));
        ASSERT_GT(confirmed, 0u) << "the writer did not work";
        UsageHistoryFile file(path);
        std::error_code error;
        const auto held = file.lock(error);
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
    std::printf("%d kills: %zu samples, none of them lost\n", kills, known);
}

/// One sample an hour until `end`, as the file has it.
std::string hourlyHistory(Instant end, int hours) {
    std::string text = "[";
    for (int age = hours; age > 0; --age) {
        const auto sample = historySample(AgentProviderID::claude(), "session",
                                          end - age * Seconds(3600.1), age % 100);
        text += (text.size() == 1 ? "\n" : ",\n") + serialized(toJSON(sample), -1);
    }
    return text + "\n]\n";
}

AgentUsageSnapshot readingAt(Instant instant, double used) {
    AgentUsageSnapshot reading;
    reading.id = AgentProviderID::claude();
    reading.windows = {{"session", used, 300, std::nullopt}};
    reading.updatedAt = instant;
    return reading;
}

TEST(StorageFaults, AFlippedBitCostsOneSampleAtMost) {
    const Instant now(Seconds(800'000'000));
    const std::string intact = hourlyHistory(now, 200);
    std::mt19937 random(std::random_device{}());
    std::uniform_int_distribution<std::size_t> anywhere(0, intact.size() - 1);
    int repairs = 0;
    const int flips = faultCount(50);
    for (int round = 0; round < flips; ++round) {
        const TemporaryDirectory directory;
        std::string flipped = intact;
        const std::size_t at = anywhere(random);
        flipped[at] = static_cast<char>(flipped[at] ^ (1 << (random() % 8)));
        const fs::path path = directory.write("usage-history.json", flipped);
        UsageHistoryRecorder recorder(path, std::make_shared<UsageHistory>());
        recorder.load(now);
        recorder.record(readingAt(now, 0.5));
        const auto samples = samplesOf(contentOf(path));
        ASSERT_GE(samples.size(), 200u) << at << ": " << flipped.substr(at, 60);
        ASSERT_EQ(samples.back().usedPercent, 0.5) << "recording goes on";
        const auto news = recorder.trouble().takeNews();
        if (news) {
            ++repairs;
            ASSERT_EQ(news->kind, StorageTrouble::Kind::repaired) << at;
            ASSERT_EQ(contentOf(news->file), flipped) << "kept byte for byte";
        }
    }
    std::printf("%d flipped bits: %d repaired and kept aside, the others left a sample one; "
                "recording went on after each\n",
                flips, repairs);
}

TEST(StorageFaults, AWrongClockCostsNothing) {
    const Instant now(Seconds(800'000'000));
    const std::string intact = hourlyHistory(now, 24 * 30);
    std::mt19937 random(std::random_device{}());
    std::uniform_real_distribution<double> daysAhead(-3'000, 7'000);
    const int jumps = faultCount(20);
    for (int round = 0; round < jumps; ++round) {
        const TemporaryDirectory directory;
        const fs::path path = directory.write("usage-history.json", intact);
        const Seconds ahead = daysAhead(random) * Seconds(86'400);
        for (int run = 0; run < 3; ++run) { // on three days
            const Instant wrong = now + ahead + run * Seconds(86'401);
            UsageHistoryRecorder recorder(path, std::make_shared<UsageHistory>());
            recorder.load(wrong);
            recorder.record(readingAt(wrong, 50.5 + run));
        }
        UsageHistoryRecorder recorder(path, std::make_shared<UsageHistory>());
        recorder.load(now);
        recorder.record(readingAt(now, 60.5));
        const auto samples = samplesOf(contentOf(path));
        const auto old = contentOf(directory / "usage-history.removed.json");
        // What a clock that was behind has dated is older than 400 days: it goes in its time.
        ASSERT_GE(samples.size(), 24u * 30 + 1) << ahead / Seconds(86'400) << " days ahead";
        ASSERT_EQ(samples.size() + (old.empty() ? 0 : samplesOf(old).size()), 24u * 30 + 4)
            << ahead / Seconds(86'400) << " days ahead";
        const auto last = std::ranges::find(samples, 60.5, &UsageHistorySample::usedPercent);
        ASSERT_EQ(last->capturedAt, now) << "the right date again";
    }
    std::printf("%d clocks wrong by up to twenty years: no sample lost, none dated by them "
                "afterwards\n",
                jumps);
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

TEST_F(SmallDisk, ThatIsFull) {
    // dd fails for want of room, which is what it is for.
    showThatNothingIsLost("dd if=/dev/zero of=" + disk() + "/filler bs=1k; test -s " + disk() +
                              "/filler",
                          "rm " + disk() + "/filler");
    std::printf("a full disk: told once, and everything written when there was room again\n");
}

TEST_F(SmallDisk, ThatIsReadOnly) {
    showThatNothingIsLost("mount -o remount,ro " + disk(), "mount -o remount,rw " + disk());
    std::printf("a read-only disk: told once, and everything written when it could be again\n");
}

} // namespace
} // namespace vellmark::tests
