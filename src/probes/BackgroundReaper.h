#pragma once

#include "probes/LaunchedChild.h"

#include <sys/types.h>
#include <vector>

namespace vellmark {

/// Looks after children that nobody waits for any more, on a thread of its own that sleeps until
/// one of them ends.
namespace BackgroundReaper {

/// Takes `child` out of the registry into the reaper's own list. A child that still runs, and its
/// direct children, get SIGTERM before this returns and SIGKILL 3 s later; the child is collected
/// when it has ended. Never waits, never throws: without the means to wait in the background the
/// child is killed at once.
void adopt(LaunchedChild child) noexcept;

/// The children that have not ended yet.
std::vector<pid_t> snapshot();

} // namespace BackgroundReaper

} // namespace vellmark
