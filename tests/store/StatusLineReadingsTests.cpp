#include "store/ReadingTime.h"
#include "store/StatusLineReadings.h"
#include "store/StoreFixture.h"
#include "store/UsageHistory.h"

namespace vellmark::tests {
namespace {

class StatusLineReading : public StoreFixture {
protected:
    const Instant reset = executor.now() + Seconds(2 * 3600);

    void tell(double used, const std::string& turn) {
        const UsageWindow session{
            .id = "session", .usedPercent = used, .windowDurationMinutes = 300, .resetsAt = reset};
        const StatusLineReadings readings(machine.statusLineFile());
        EXPECT_FALSE(readings.keep(
            {.session = "a", .turn = turn, .toldAt = {}, .windows = {session}}, executor.now()));
        store->takeStatusLine();
        settle();
    }
    double used() const { return snapshot(claude)->windows.front().usedPercent; }
    bool isOld() const {
        return isOldReading(state(), *snapshot(claude), snapshot(claude)->windows.front(),
                            executor.now());
    }
};

TEST_F(StatusLineReading, StandsInForOlderFiguresAndIsRecorded) {
    makeStore();
    claude->answersUsed(10, executor.now());
    refresh(RefreshTrigger::launch);
    settle();
    executor.advance(Seconds(1200));
    EXPECT_TRUE(isOld());
    tell(30, "1");
    EXPECT_EQ(used(), 30);
    EXPECT_FALSE(isOld());
    EXPECT_EQ(snapshot(claude)->notes, std::vector{SnapshotNote{SnapshotNote::StatusLine{}}});
    EXPECT_EQ(readingTimeOf(state(), *snapshot(claude)), executor.now() - Seconds(1200))
        << "what it did not tell is as old as before";
    const auto last = store->history().last({claude->id(), "session"}, executor.now());
    ASSERT_TRUE(last);
    EXPECT_EQ(last->usedPercent, 30);

    // A failure does not bring the older figures back, nor does another run of the program.
    claude->fails(UsageProviderError(UsageProviderError::Kind::claudeServiceUnavailable));
    refresh(RefreshTrigger::manual);
    EXPECT_EQ(used(), 30);
    settle();
    makeStore();
    EXPECT_EQ(used(), 30);

    // A newer reading does, and what a session repeats is not newer than that.
    executor.advance(Seconds(60));
    claude->answersUsed(50, executor.now());
    refresh(RefreshTrigger::manual);
    EXPECT_EQ(used(), 50);
    executor.advance(Seconds(60));
    tell(30, "1");
    EXPECT_EQ(used(), 50);
    tell(52, "2");
    EXPECT_EQ(used(), 52);
    executor.advance(Seconds(901));
    EXPECT_TRUE(isOld());
}

} // namespace
} // namespace vellmark::tests
