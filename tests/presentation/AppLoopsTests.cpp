#include "presentation/AppLoops.h"
#include "presentation/ClockJump.h"
#include "support/HandTurnedExecutor.h"
#include "support/Matchers.h"

#include <functional>
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
            AppLoops::Actions{
                .reevaluateStatusItem = [this] { ++glyphTicks_; },
                .refresh =
                    [this](RefreshTrigger trigger) {
                        note(trigger == RefreshTrigger::wake ? "wake" : "timer");
                        onRefresh_();
                    },
                .trimLog = [this] { note("trim"); },
                .holdAutomaticRefreshesUntil =
                    [this](Instant until) { heldFor_ = (until - start_).count(); },
                .now = [this] { return executor_.now(); },
                .continuousTime = [this] { return executor_.now().time_since_epoch() + slept_; }});
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
    /// How long the timers stood still.
    Seconds slept_{0};
    Record done_;
    std::function<void()> onRefresh_ = [] {};
    std::unique_ptr<AppLoops> loops_;
};

TEST_F(AppLoopsTest, WaitAPeriodBeforeTheFirstTurnAndCountAnotherFromTheLast) {
    loops_->start();
    executor_.advance(Seconds(59));
    EXPECT_EQ(glyphTicks_, 0);
    executor_.advance(Seconds(1));
    EXPECT_EQ(glyphTicks_, 1);
    executor_.advance(Seconds(340));
    EXPECT_EQ(glyphTicks_, 6);
    loops_->setRefreshPeriod(Seconds(1800));
    executor_.advance(Seconds(1699));
    EXPECT_EQ(done_, (Record{"timer 300"}));
    executor_.advance(Seconds(1));
    EXPECT_EQ(done_, (Record{"timer 300", "timer 2100"}));
    executor_.advance(Seconds(700));
    loops_->setRefreshPeriod(Seconds(600));
    executor_.advance(Seconds(0));
    EXPECT_EQ(done_, (Record{"timer 300", "timer 2100", "timer 2800"})) << "it was due already";
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

TEST_F(AppLoopsTest, CountTheTimeThatTheSystemSleeps) {
    loops_->start();
    for (int day = 1; day <= 3; ++day) {
        executor_.advance(Seconds(8 * 3600));
        slept_ += Seconds(16 * 3600);
        done_.clear();
        loops_->systemDidWake();
        executor_.advance(Seconds(5));
        const std::string awake = std::to_string(day * 8 * 3600 + (day - 1) * 5);
        EXPECT_THAT(done_, UnorderedElementsAre("trim " + awake, "timer " + awake));
    }
    // A nap takes nothing but its own length from the waits.
    const int ticks = glyphTicks_;
    slept_ += Seconds(20);
    loops_->systemDidWake();
    executor_.advance(Seconds(34));
    EXPECT_EQ(glyphTicks_, ticks);
    executor_.advance(Seconds(1));
    EXPECT_EQ(glyphTicks_, ticks + 1);
}

TEST_F(AppLoopsTest, DoNothingAfterTheyHaveStopped) {
    loops_->start();
    loops_->systemDidWake();
    loops_->stop();
    executor_.advance(Seconds(90000));
    EXPECT_EQ(glyphTicks_, 0);
    EXPECT_TRUE(done_.empty());

    // A turn may end them.
    onRefresh_ = [this] { loops_->stop(); };
    loops_->start();
    executor_.advance(Seconds(90000));
    EXPECT_EQ(done_, (Record{"timer 90300"}));
    EXPECT_EQ(executor_.timerCount(), 0U);

    loops_->start();
    loops_->systemDidWake();
    loops_.reset();
    EXPECT_EQ(executor_.timerCount(), 0U);
}

TEST(ClockJump, SeesASleepBetweenTwoLooks) {
    const Seconds start(1000);
    ClockJump jump;
    EXPECT_FALSE(jump.look(start, Seconds(50)));
    EXPECT_FALSE(jump.look(start + Seconds(60), Seconds(110)));
    // The machine slept for an hour; the steady clock stood still.
    EXPECT_TRUE(jump.look(start + Seconds(3720), Seconds(170)));
    EXPECT_FALSE(jump.look(start + Seconds(3780), Seconds(230)));
    // A loaded machine comes late by both clocks; a nap is none.
    EXPECT_FALSE(jump.look(start + Seconds(4780), Seconds(1230)));
    EXPECT_FALSE(jump.look(start + Seconds(4845), Seconds(1290)));
}

} // namespace
} // namespace vellmark::tests
