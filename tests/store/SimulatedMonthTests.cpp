#include "store/StoreFixture.h"
#include "store/UsageHistory.h"
#include "support/ProcessCensus.h"

#include <cmath>
#include <fstream>

namespace vellmark::tests {
namespace {

/// In memory where the system offers that, since each of the thousands of refreshes is synced.
class Month : public StoreFixture {
protected:
    Month() { machine.applicationSupport = memory_.path(); }

private:
    static fs::path fastest() {
        const fs::path memory = "/dev/shm";
        return fs::exists(memory) ? memory : fs::temp_directory_path();
    }
    TemporaryDirectory memory_{fastest()};
};

std::size_t residentBytes() {
    std::ifstream memory("/proc/self/statm");
    std::size_t pages = 0;
    memory >> pages >> pages;
    return pages * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
}

TEST_F(Month, CostsItsHistoryAndNothingElse) {
    makeStore();
    const Instant start = executor.now();
    std::size_t descriptors = 0;
    std::size_t threads = 0;
    std::size_t memory = 0;
    constexpr int refreshes = VELLMARK_MONTH_REFRESHES;
    for (int index = 0; index < refreshes; ++index) {
        // Five-hour windows that fill up; every tenth reading of one agent fails.
        const double used = std::fmod(index, 60) * 1.5;
        codex->answersUsed(used, executor.now());
        claude->answersUsed(std::floor(used / 10), executor.now());
        if (index % 10 == 9) {
            antigravity->fails(UsageProviderError::antigravityReadFailed("no answer"));
        } else {
            antigravity->answersUsed(33, executor.now());
        }
        refresh(RefreshTrigger::timer);
        if (index % 288 == 287) {
            store->trimLog();
            store->flush(); // a day is over in less time than its writing takes
        }
        executor.advance(Seconds(300));
        if (index == refreshes / 10) { // after the caches have filled
            settle();
            descriptors = openDescriptorCount();
            threads = threadCount();
            memory = residentBytes();
        }
    }
    settle();
    EXPECT_EQ(openDescriptorCount(), descriptors);
    EXPECT_EQ(threadCount(), threads);
    EXPECT_EQ(livingChildCount(), 0u);
    EXPECT_FALSE(hasZombieChild());

    // One agent changes with each reading, one every 7 readings, one only its reset time.
    const std::size_t samples = store->history().sampleCount();
    EXPECT_GT(samples, refreshes);
    EXPECT_LE(samples, 3u * refreshes);
    EXPECT_LE(store->history().bytesHeld(), 64 * samples);
    const auto fileSize = fs::file_size(machine.usageHistoryFile());
    EXPECT_LT(fileSize, 200 * samples);
    EXPECT_LT(fs::file_size(machine.lastSnapshotsFile()), 4096u);
    // Five entries or so a refresh of about 140 bytes, their messages among them.
    EXPECT_LT(fs::file_size(machine.activityLogFile()), 800u * refreshes);
    constexpr bool isWhole = refreshes == 30 * 24 * 12;
    if (isWhole && memory > 0) {
        const std::size_t slack = 8u << 20; // what the allocator keeps
        EXPECT_LT(residentBytes(), memory + store->history().bytesHeld() + slack);
    }

    // The figures of the month are there for the next run.
    makeStore();
    store->flush();
    EXPECT_EQ(store->history().sampleCount(), samples);
    EXPECT_EQ(executor.now() - start, Seconds(300.0 * refreshes));
}

} // namespace
} // namespace vellmark::tests
