#pragma once

#include "platform/ProcessTable.h"
#include "text/Instant.h"

#include <chrono>
#include <sys/types.h>
#include <vector>

namespace vellmark {

/// The wall-clock limit of one child: SIGTERM to its direct children and to it at the soft stop,
/// SIGKILL `killGrace` later. One thread fires the limits of all children; a soft stop that is due
/// already fires within the constructor.
///
/// A direct child that was told to stop is remembered: it is killed after the grace also when its
/// parent has ended and the limit was cancelled by then. The child must stay uncollected until
/// `cancel` or the destructor has returned; from then on no signal is sent to it.
class ChildLimit {
public:
    using Clock = std::chrono::steady_clock;

    ChildLimit(pid_t child, Seconds untilSoftStop, Seconds killGrace);
    ~ChildLimit();
    ChildLimit(const ChildLimit&) = delete;
    ChildLimit& operator=(const ChildLimit&) = delete;

    /// True when the soft stop had found the child running.
    bool cancel();

    /// Tells those of `processes` that still live to stop and kills them after `grace`; does not
    /// wait for that.
    static void stopSurvivors(std::vector<ProcessHandle> processes, Seconds grace);

    /// Takes over every process that was told to stop and has not been killed yet; who has them
    /// ends them (the program is ending).
    static std::vector<ProcessHandle> takeTold();

private:
    friend class StopThread;
    enum class Stage { running, told, done };

    Clock::time_point due() const { return stage_ == Stage::running ? softStop_ : hardStop_; }
    void fire();

    pid_t child_;
    Clock::time_point softStop_;
    Clock::time_point hardStop_;
    Stage stage_ = Stage::running;
    bool timedOut_ = false;
    std::vector<ProcessHandle> told_;
};

/// Sends `number` to each of `processes` and returns those that it reached.
std::vector<ProcessHandle> signalled(std::vector<ProcessHandle> processes, int number);

} // namespace vellmark
