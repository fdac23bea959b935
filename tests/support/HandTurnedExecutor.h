#pragma once

#include "store/MainExecutor.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <map>
#include <mutex>
#include <optional>
#include <utility>

namespace vellmark::tests {

/// A main thread whose clock is turned by hand. Tasks may be posted from any thread; they run when
/// the test turns the executor. Timers fire by `advance` alone, in the order of their times.
class HandTurnedExecutor : public MainExecutor {
public:
    explicit HandTurnedExecutor(Instant start = Instant(Seconds(786'000'000))) : now_(start) {}

    /// On the test's own thread, like everything but `post`.
    Instant now() const { return now_; }
    /// Sets the clock without firing anything, as a user or a time server may.
    void setNow(Instant now) { now_ = now; }

    void post(Task task) override {
        const std::lock_guard hold(lock_);
        posted_.push_back(std::move(task));
        arrived_.notify_all();
    }

    Timer postAfter(Seconds delay, Seconds /*tolerance*/, Task task) override {
        timers_.emplace(++lastTimer_, Alarm{now_ + delay, std::move(task)});
        return lastTimer_;
    }

    void cancel(Timer timer) override { timers_.erase(timer); }

    std::size_t timerCount() const { return timers_.size(); }

    /// Runs what is posted, also what that posts, until nothing is left.
    void turn() {
        while (auto task = take()) {
            (*task)();
        }
    }

    /// Turns until `condition` holds; false when it does not within `limit` of real time.
    template<typename Condition>
    [[nodiscard]] bool turnUntil(Condition&& condition, Seconds limit = Seconds(30)) {
        const auto deadline = std::chrono::steady_clock::now() +
                              std::chrono::duration_cast<std::chrono::milliseconds>(limit);
        for (;;) {
            turn();
            if (condition()) {
                return true;
            }
            // Conditions may hold by what other threads do, so they are asked again now and then.
            std::unique_lock hold(lock_);
            arrived_.wait_for(hold, std::chrono::milliseconds(5),
                              [this] { return !posted_.empty(); });
            if (posted_.empty() && std::chrono::steady_clock::now() > deadline) {
                return false;
            }
        }
    }

    /// Moves the clock on by `span` and fires the timers that fall due on the way.
    void advance(Seconds span) {
        const Instant end = now_ + span;
        turn();
        for (auto due = nextTimer(end); due != timers_.end(); due = nextTimer(end)) {
            now_ = std::max(now_, due->second.at);
            const Task task = std::move(due->second.task);
            timers_.erase(due);
            task();
            turn();
        }
        now_ = end;
    }

private:
    struct Alarm {
        Instant at;
        Task task;
    };

    std::optional<Task> take() {
        const std::lock_guard hold(lock_);
        if (posted_.empty()) {
            return std::nullopt;
        }
        Task task = std::move(posted_.front());
        posted_.pop_front();
        return task;
    }

    std::map<Timer, Alarm>::iterator nextTimer(Instant end) {
        const auto next = std::ranges::min_element(
            timers_, {}, [](const auto& timer) { return timer.second.at; });
        return next != timers_.end() && next->second.at <= end ? next : timers_.end();
    }

    Instant now_;
    Timer lastTimer_ = 0;
    std::map<Timer, Alarm> timers_;
    std::mutex lock_;
    std::condition_variable arrived_;
    std::deque<Task> posted_; ///< under `lock_`
};

} // namespace vellmark::tests
