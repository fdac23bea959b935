#pragma once

#include "process/ChildLimit.h"
#include "process/LaunchedChild.h"

#include <memory>
#include <sys/types.h>
#include <vector>

namespace vellmark {

/// Looks after children that nobody waits for any more, on a thread of its own that sleeps until
/// one of them ends. A child that was told to stop is collected only once every process that was
/// told with it is gone: until then its number names its group.
namespace BackgroundReaper {

/// Moves `child` from the registry to the reaper's own list. If it is still running, it is told to
/// stop with its family before this returns, and whatever is alive 3 s later is killed. Never
/// waits, never throws: if it cannot wait in the background, the child and its group are killed at
/// once.
void adopt(LaunchedChild child) noexcept;

/// The same for a child with a limit, which stays in force.
void adopt(LaunchedChild child, std::unique_ptr<ChildLimit> limit) noexcept;

/// The children that are not collected yet.
std::vector<pid_t> snapshot();

} // namespace BackgroundReaper

} // namespace vellmark
