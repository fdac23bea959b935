#include "probes/ChildLimit.h"

#include "probes/BackgroundThread.h"

#include <algorithm>
#include <condition_variable>
#include <iterator>
#include <mutex>
#include <optional>
#include <signal.h>
#include <sys/wait.h>
#include <utility>

namespace vellmark {

/// Fires the limits. Signals are sent with the lock held: a limit that was cancelled, which takes
/// the same lock, can therefore not be half-way through a signal. What is done under it is short.
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
        const bool mayHaveSurvivors = limit.stage_ == ChildLimit::Stage::told;
        if (mayHaveSurvivors)
            keepLiving(std::move(limit.told_), limit.hardStop_);
        limit.told_.clear();
    }

    void addSurvivors(std::vector<ProcessHandle> processes, Clock::time_point due) {
        const std::lock_guard hold(lock_);
        keepLiving(std::move(processes), due);
    }

    std::vector<ProcessHandle> takeTold() {
        const std::lock_guard hold(lock_);
        std::vector<ProcessHandle> told;
        for (Survivor& survivor : std::exchange(survivors_, {}))
            told.push_back(std::move(survivor.process));
        for (ChildLimit* const limit : limits_)
            std::ranges::move(std::exchange(limit->told_, {}), std::back_inserter(told));
        return told;
    }

private:
    /// Outlived its parent after both were told to stop.
    struct Survivor {
        ProcessHandle process;
        Clock::time_point due;
    };

    [[noreturn]] void work() {
        std::unique_lock hold(lock_);
        for (;;) {
            awaited_ = nextDue();
            if (awaited_)
                earlier_.wait_until(hold, *awaited_);
            else
                earlier_.wait(hold);
            fireDue(Clock::now());
        }
    }

    /// A later time than the awaited one needs no wake-up: the thread looks again by then.
    void wakeFor(Clock::time_point due) {
        if (!awaited_ || due < *awaited_)
            earlier_.notify_one();
    }

    void keepLiving(std::vector<ProcessHandle> processes, Clock::time_point due) {
        for (ProcessHandle& process : processes)
            if (process.isAlive())
                survivors_.push_back({std::move(process), due});
        if (!survivors_.empty())
            wakeFor(due);
    }

    std::optional<Clock::time_point> nextDue() const {
        std::optional<Clock::time_point> next;
        const auto consider = [&next](Clock::time_point due) {
            next = next ? std::min(*next, due) : due;
        };
        for (const ChildLimit* const limit : limits_)
            if (limit->stage_ != ChildLimit::Stage::done)
                consider(limit->due());
        for (const Survivor& survivor : survivors_)
            consider(survivor.due);
        return next;
    }

    void fireDue(Clock::time_point now) {
        for (ChildLimit* const limit : limits_)
            while (limit->stage_ != ChildLimit::Stage::done && limit->due() <= now)
                limit->fire();
        std::erase_if(survivors_, [now](const Survivor& survivor) {
            if (survivor.due > now)
                return false;
            survivor.process.signal(SIGKILL);
            return true;
        });
    }

    std::mutex lock_;
    std::condition_variable earlier_;
    bool isStarted_ = false;
    std::optional<Clock::time_point> awaited_;
    std::vector<ChildLimit*> limits_;
    std::vector<Survivor> survivors_;
};

namespace {

/// Spans that no clock can count from now are as good as for ever.
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
    : child_(child),
      softStop_(Clock::now() + boundedSpan(std::max(untilSoftStop, Seconds::zero()))),
      hardStop_(softStop_ + boundedSpan(killGrace)) {
    StopThread::shared().add(*this);
}

ChildLimit::~ChildLimit() {
    cancel();
}

bool ChildLimit::cancel() {
    StopThread::shared().remove(*this);
    stage_ = Stage::done;
    return timedOut_;
}

void ChildLimit::stopSurvivors(std::vector<ProcessHandle> processes, Seconds grace) {
    auto told = signalled(std::move(processes), SIGTERM);
    if (!told.empty())
        StopThread::shared().addSurvivors(std::move(told), Clock::now() + boundedSpan(grace));
}

std::vector<ProcessHandle> ChildLimit::takeTold() {
    return StopThread::shared().takeTold();
}

void ChildLimit::fire() {
    const bool runs = isRunning(child_);
    if (stage_ == Stage::running && runs) {
        stage_ = Stage::told;
        timedOut_ = true;
        told_ = signalled(directChildHandles(child_), SIGTERM);
        ::kill(child_, SIGTERM);
        return;
    }
    stage_ = Stage::done;
    if (runs)
        signalled(directChildHandles(child_), SIGKILL);
    for (const ProcessHandle& process : told_)
        process.signal(SIGKILL);
    if (runs)
        ::kill(child_, SIGKILL);
}

std::vector<ProcessHandle> signalled(std::vector<ProcessHandle> processes, int number) {
    std::erase_if(processes, [number](const ProcessHandle& each) { return !each.signal(number); });
    return processes;
}

} // namespace vellmark
