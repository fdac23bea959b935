#include "process/ChildLimit.h"

#include "process/BackgroundThread.h"
#include "process/RunningChildren.h"

#include <algorithm>
#include <condition_variable>
#include <iterator>
#include <mutex>
#include <optional>
#include <signal.h>
#include <sys/wait.h>
#include <utility>

namespace vellmark {

/// Fires the limits. Everything about a limit happens with the lock held: one that was cancelled
/// can therefore not be half-way through a signal. What is done under it is short.
class StopThread {
public:
    using Clock = ChildLimit::Clock;

    /// Never destroyed: it works until the program is gone.
    static StopThread& shared() {
        static auto* const only = new StopThread;
        return *only;
    }

    void add(ChildLimit& limit) {
        const std::lock_guard hold(lock_);
        if (!isStarted_) {
            startBackgroundThread([this] { work(); });
            isStarted_ = true;
        }
        limits_.push_back(&limit);
        fireDue(Clock::now());
        wakeFor(limit.due());
    }

    void remove(ChildLimit& limit) {
        const std::lock_guard hold(lock_);
        std::erase(limits_, &limit);
    }

    /// Runs `change`, which may bring the limit's next time forward.
    template<typename Change>
    auto with(ChildLimit& limit, Change&& change) {
        const std::lock_guard hold(lock_);
        const auto result = change();
        wakeFor(limit.due());
        return result;
    }

    std::vector<ProcessHandle> takeTold() {
        const std::lock_guard hold(lock_);
        std::vector<ProcessHandle> told;
        for (ChildLimit* const limit : limits_) {
            std::ranges::move(limit->family_.takeTold(), std::back_inserter(told));
        }
        return told;
    }

private:
    [[noreturn]] void work() {
        std::unique_lock hold(lock_);
        for (;;) {
            awaited_ = nextDue();
            if (awaited_) {
                earlier_.wait_until(hold, *awaited_);
            } else {
                earlier_.wait(hold);
            }
            fireDue(Clock::now());
        }
    }

    /// A later time than the awaited one needs no wake-up: the thread looks again by then.
    void wakeFor(Clock::time_point due) {
        if (!awaited_ || due < *awaited_) {
            earlier_.notify_one();
        }
    }

    std::optional<Clock::time_point> nextDue() const {
        std::optional<Clock::time_point> next;
        for (const ChildLimit* const limit : limits_) {
            if (limit->stage_ != ChildLimit::Stage::done) {
                next = next ? std::min(*next, limit->due()) : limit->due();
            }
        }
        return next;
    }

    void fireDue(Clock::time_point now) {
        for (ChildLimit* const limit : limits_) {
            while (limit->stage_ != ChildLimit::Stage::done && limit->due() <= now) {
                limit->fire();
            }
        }
    }

    std::mutex lock_;
    std::condition_variable earlier_;
    bool isStarted_ = false;
    std::optional<Clock::time_point> awaited_;
    std::vector<ChildLimit*> limits_;
};

namespace {

/// A span too long for any clock to count from now is as good as for ever.
ChildLimit::Clock::duration boundedSpan(Seconds span) {
    constexpr Seconds longest{1e9};
    return std::chrono::duration_cast<ChildLimit::Clock::duration>(
        std::clamp(span, -longest, longest));
}

/// False for a child that waits to be collected.
bool isRunning(pid_t child) {
    siginfo_t info{};
    return ::waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOHANG | WNOWAIT) == 0 &&
           info.si_pid == 0;
}

} // namespace

ChildLimit::ChildLimit(pid_t child, Seconds untilSoftStop, Seconds killGrace)
    : child_(child), grace_(boundedSpan(killGrace)),
      softStop_(Clock::now() + boundedSpan(std::max(untilSoftStop, Seconds::zero()))),
      hardStop_(softStop_ + grace_),
      // The child is not collected, so the numbers are its own and its group's.
      family_(child, [](pid_t target, int number) { return ::kill(target, number) == 0; }) {
    StopThread::shared().add(*this);
}

ChildLimit::~ChildLimit() {
    cancel();
}

void ChildLimit::stop() {
    StopThread::shared().with(*this, [this] {
        if (stage_ == Stage::running && isRunning(child_)) {
            tell();
            hardStop_ = Clock::now() + grace_;
        }
        return true;
    });
}

void ChildLimit::stopLeftBehind(std::vector<ProcessHandle> processes) {
    StopThread::shared().with(*this, [&] {
        family_.tellLeftBehind(std::move(processes));
        if (stage_ != Stage::told) {
            hardStop_ = Clock::now() + grace_;
        }
        stage_ = Stage::told;
        return true;
    });
}

bool ChildLimit::hasSurvivors() {
    return StopThread::shared().with(*this, [this] {
        if (stage_ != Stage::told || !family_.outlivesLeader()) {
            stage_ = Stage::done;
        }
        return stage_ == Stage::told;
    });
}

bool ChildLimit::hasTimedOut() {
    return StopThread::shared().with(*this, [this] { return timedOut_; });
}

void ChildLimit::cancel() {
    StopThread::shared().remove(*this);
}

std::vector<ProcessHandle> ChildLimit::takeTold() {
    return StopThread::shared().takeTold();
}

void ChildLimit::fire() {
    if (stage_ == Stage::told) {
        stage_ = Stage::done;
        family_.kill();
    } else if (isRunning(child_)) {
        timedOut_ = true;
        tell();
    } else {
        stage_ = Stage::done;
    }
}

void ChildLimit::tell() {
    stage_ = Stage::told;
    family_.tell();
    for (const ProcessHandle& process : family_.told()) {
        RunningChildren::attach(child_, process);
    }
}

} // namespace vellmark
