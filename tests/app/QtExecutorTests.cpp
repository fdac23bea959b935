#include "app/QtExecutor.h"
#include "ui/QtEnvironment.h"

#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <thread>
#include <vector>

namespace vellmark::tests {
namespace {

class QtExecutorTest : public ::testing::Test {
protected:
    /// Runs Qt's loop until `count` tasks have run.
    void runUntil(std::size_t count) {
        EXPECT_TRUE(waitUntil([&] { return ran_.size() >= count; }));
    }
    MainExecutor::Task note(int number) {
        return [this, number] {
            ran_.push_back(number);
            times_.push_back(std::chrono::steady_clock::now() - start_);
        };
    }

    static constexpr Seconds none{0};
    QtExecutor executor_;
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    std::vector<int> ran_;
    std::vector<Seconds> times_;
};

TEST_F(QtExecutorTest, RunsThePostsOfOtherThreadsInOrder) {
    std::thread other([this] {
        executor_.post(note(1));
        executor_.post(note(2));
    });
    other.join();
    EXPECT_TRUE(ran_.empty()) << "not on the posting thread";
    runUntil(2);
    EXPECT_EQ(ran_, (std::vector{1, 2}));
}

TEST_F(QtExecutorTest, TimersThatMayWaitShareAWakeUp) {
    executor_.postAfter(Seconds(0.02), Seconds(30), note(1));
    executor_.postAfter(Seconds(0.1), none, note(2));
    runUntil(2);
    EXPECT_EQ(ran_, (std::vector{1, 2}));
    // Due long before, the first has waited for the second, and neither came early.
    EXPECT_GE(times_[0].count(), 0.1);
}

TEST_F(QtExecutorTest, CancelledTimersDoNotRunEvenWhenTheyAreDueAlready) {
    std::optional<MainExecutor::Timer> second;
    executor_.postAfter(Seconds(0.01), none, [&] {
        note(1)();
        executor_.cancel(*second);
        executor_.cancel(12345);
    });
    second = executor_.postAfter(Seconds(0.01), none, note(2));
    executor_.postAfter(Seconds(0.05), none, note(3));
    runUntil(2);
    EXPECT_EQ(ran_, (std::vector{1, 3}));
}

} // namespace
} // namespace vellmark::tests
