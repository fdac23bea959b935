#pragma once

#include "process/ChildConfiguration.h"
#include "process/RunningChildren.h"
#include "text/Instant.h"

#include <cstdint>
#include <span>
#include <string>
#include <sys/types.h>

namespace vellmark {

/// How a bounded run ended.
struct BoundedProcessResult {
    /// Exit status, or the number of the signal that ended the child.
    std::int32_t terminationStatus = 0;
    /// The child was ended by a signal.
    bool uncaughtSignal = false;
    /// The soft stop found the child still running when the limit expired.
    bool timedOut = false;
    /// The child wrote more than was to be recorded, or than the disk takes, and was stopped for it
    /// if it still ran.
    bool outputCapped = false;
    /// From just before the launch until the child had ended.
    Seconds elapsed{};
    /// From just before the launch until the child was registered.
    Seconds launch{};
    /// What was captured, up to the limits asked for.
    std::string output;
    std::string errorOutput;
};

/// Runs one child to its end under a wall-clock limit.
///
/// Promises: the child's family is told to stop, its direct children first, when `timeout` has
/// passed (at once when it is not positive), and killed `killGrace` later, also who outlives the
/// child; `run` does not wait for that. A signal never reaches a reused process number; nothing is
/// stopped after the child has ended in time (but direct children that outlive it, where the
/// configuration says so); the child is in the registry while it lives.
/// Captured output is drained while the child runs, and reading ends at the latest 100 ms after it
/// has ended, because a grandchild may hold the pipe open for ever. Blocks the caller; not for the
/// main thread.
namespace BoundedProcess {

/// Throws std::system_error when the child cannot be launched, and nothing else. The error is
/// std::errc::operation_canceled when the registry is closed.
BoundedProcessResult run(const ChildConfiguration& configuration, Seconds timeout,
                         Seconds killGrace);

/// Stops `pids`, children of this program: SIGTERM to the family of each, SIGKILL to what is left
/// after `grace`, looking every 0.05 s. Removes them from the registry.
/// Returns how many of `pids` had to be killed; a zombie counts as gone.
int terminateAll(std::span<const pid_t> pids, Seconds grace);

} // namespace BoundedProcess

/// Ends everything at termination: closes the registry, then stops as `terminateAll` does every
/// registered child, every child left to the background reaper and every process that a limit told
/// to stop and that still lives. Blocks for about `grace` at most. Returns the number of children
/// that were killed by force.
int terminateAllChildren(Seconds grace);

} // namespace vellmark
