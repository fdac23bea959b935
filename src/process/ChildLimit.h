#pragma once

#include "process/ProcessFamily.h"
#include "text/Instant.h"

#include <chrono>
#include <sys/types.h>
#include <vector>

namespace vellmark {

/// The wall-clock limit of one child: its family is told to stop at the soft stop and killed
/// `killGrace` later. One thread fires the limits of all children; a soft stop that is already due
/// fires within the constructor.
///
/// The child must stay uncollected until `cancel` or the destructor has returned; after that,
/// nothing is signalled any more. To have the family killed after the child has ended, keep both
/// until `hasSurvivors` is false.
class ChildLimit {
public:
    using Clock = std::chrono::steady_clock;

    ChildLimit(pid_t child, Seconds untilSoftStop, Seconds killGrace);
    ~ChildLimit();
    ChildLimit(const ChildLimit&) = delete;
    ChildLimit& operator=(const ChildLimit&) = delete;

    /// Makes the soft stop now unless it has happened. Does not count as finding the child still
    /// running when the limit expired.
    void stop();
    /// Once the child has ended: tells those of `processes` that are still alive to stop, and kills
    /// them after the grace.
    void stopLeftBehind(std::vector<ProcessHandle> processes);

    /// Once the child has ended: whether anything that was told to stop is still alive and will be
    /// killed. Where nothing was told to stop so far, this ends the limit: it never will.
    bool hasSurvivors();
    /// True when the soft stop has found the child running.
    bool hasTimedOut();
    void cancel();

    /// Takes over every process that was told to stop and has not been killed yet; ending them is
    /// now up to the caller (the program is ending).
    static std::vector<ProcessHandle> takeTold();

private:
    friend class StopThread;
    enum class Stage { running, told, done };

    Clock::time_point due() const { return stage_ == Stage::running ? softStop_ : hardStop_; }
    void fire();
    void tell();

    pid_t child_;
    Clock::duration grace_;
    Clock::time_point softStop_;
    Clock::time_point hardStop_;
    Stage stage_ = Stage::running;
    bool timedOut_ = false;
    ProcessFamily family_;
};

} // namespace vellmark
