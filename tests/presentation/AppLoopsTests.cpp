#include "presentation/AppLoops.h"
#include "presentation/ClockJump.h"
#include "support/HandTurnedExecutor.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace vellmark::tests {
namespace {

/// The loops with a record of what they did, in seconds since the start.
class AppLoopsTest : public testing::Test {
protected:
    AppLoopsTest() : start_(executor_.now()), loops_(makeLoops()) {}

    std::unique_ptr<AppLoops> makeLoops() {
        return std::make_unique<AppLoops>(
            executor_,
            AppLoops::Actions{.reevaluateStatusItem = [this] { ++glyphTicks_; },
                              .refresh =
                                  [this](RefreshTrigger trigger) {
                                      note(trigger == RefreshTrigger::wake ? "wake" : "timer");
                                  },
                              .trimLog = [this] { note("trim"); },
                              .holdAutomaticRefreshesUntil =
                                  [this](Instant until) { heldFor_ = (until - start_).count(); },
                              .now = [this] { return executor_.now(); }});
    }

    void note(const std::string& what) {
        done_.push_back(what + " " +
                        std::to_string(static_cast<int>((executor_.now() - start_).count())));
    }

    using Record = std::vector<std::string>;
    HandTurnedExecutor executor_;
    Instant start_;
    int glyphTicks_ = 0;
    double heldFor_ = 0;
    Record done_;
    std::unique_ptr<AppLoops> loops_;
};

TEST_F(AppLoopsTest, WaitAPeriodBeforeTheFirstTurn) {
    loops_->start();
    executor_.advance(Seconds(59));
    EXPECT_EQ(glyphTicks_, 0);
    executor_.advance(Seconds(1));
    EXPECT_EQ(glyphTicks_, 1);
    executor_.advance(Seconds(600));
    EXPECT_EQ(glyphTicks_, 11);
    EXPECT_EQ(done_, (Record{"timer 300", "timer 600"}));
}

TEST_F(AppLoopsTest, TrimTheLogOnceADay) {
    loops_->start();
    executor_.advance(Seconds(2 * 86400));
    EXPECT_EQ(std::ranges::count(done_, "trim 86400"), 1);
    EXPECT_EQ(std::ranges::count(done_, "trim 172800"), 1);
}

TEST_F(AppLoopsTest, RefreshOnceAfterTwoWakesInARow) {
    loops_->start();
    loops_->systemDidWake();
    EXPECT_DOUBLE_EQ(heldFor_, 10);
    executor_.advance(Seconds(6));
    loops_->systemDidWake();
    EXPECT_DOUBLE_EQ(heldFor_, 16);
    executor_.advance(Seconds(40));
    EXPECT_EQ(done_, Record{"wake 16"});
}

TEST_F(AppLoopsTest, DoNothingAfterTheyHaveStopped) {
    loops_->start();
    loops_->systemDidWake();
    loops_->stop();
    executor_.advance(Seconds(90000));
    EXPECT_EQ(glyphTicks_, 0);
    EXPECT_TRUE(done_.empty());

    loops_->start();
    loops_->systemDidWake();
    loops_.reset();
    EXPECT_EQ(executor_.timerCount(), 0U);
}

TEST(ClockJump, SeesASleepBetweenTwoLooks) {
    const Instant start(Seconds(1000));
    ClockJump jump;
    EXPECT_FALSE(jump.look(start, Seconds(50)));
    EXPECT_FALSE(jump.look(start + Seconds(60), Seconds(110)));
    // The machine slept for an hour; the steady clock stood still.
    EXPECT_TRUE(jump.look(start + Seconds(3720), Seconds(170)));
    EXPECT_FALSE(jump.look(start + Seconds(3780), Seconds(230)));
    // A loaded machine comes late by both clocks, a corrected clock moves a little or back.
    EXPECT_FALSE(jump.look(start + Seconds(4780), Seconds(1230)));
    EXPECT_FALSE(jump.look(start + Seconds(4845), Seconds(1290)));
    EXPECT_FALSE(jump.look(start + Seconds(100), Seconds(1350)));
}

} // namespace
} // namespace vellmark::tests
