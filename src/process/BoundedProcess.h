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
    /// The child wrote more than was to be recorded, or more than the disk can take, and was
    /// stopped for it if it was still running.
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
/// Promises: when `timeout` has passed (at once if it is not positive), the child's family is told
/// to stop, its direct children first; whatever is alive `killGrace` later is killed, even if it
/// outlives the child, and `run` does not wait for that. A signal never reaches a reused process
/// number. Nothing is stopped once the child has ended in time, except direct children that outlive
/// it where the configuration says so. The child is in the registry while it lives.
///
/// Captured output is drained while the child runs. Reading ends no later than 100 ms after the
/// child does, because a grandchild may hold the pipe open for ever. Blocks the caller; not for the
/// main thread.
namespace BoundedProcess {

/// Throws std::system_error when the child cannot be launched, and nothing else. The error is
/// std::errc::operation_canceled when the registry is closed.
BoundedProcessResult run(const ChildConfiguration& configuration, Seconds timeout,
                         Seconds killGrace);

/// Stops `pids`, children of this program: SIGTERM to the family of each, then SIGKILL to whatever
/// is left after `grace`, checking every 0.05 s. Removes them from the registry. Returns how many
/// of `pids` had to be killed; a zombie counts as gone.
int terminateAll(std::span<const pid_t> pids, Seconds grace);

} // namespace BoundedProcess

/// Ends everything at termination: closes the registry, then stops, the way `terminateAll` does,
/// every registered child, every child left to the background reaper, and every process that a
/// limit has told to stop and that is still alive. Blocks for about `grace` at most. Returns the
/// number of children that were killed by force.
int terminateAllChildren(Seconds grace);

} // namespace vellmark
