#pragma once

#include "process/ChildLimit.h"
#include "process/LaunchedChild.h"

#include <memory>
#include <sys/types.h>
#include <vector>

namespace vellmark {

/// Looks after children that nobody waits for any more, on a thread of its own that sleeps until
/// one of them ends. A child that was told to stop is collected only when nobody is left who was
/// told with it: until then its number names its group.
namespace BackgroundReaper {

/// Takes `child` out of the registry into the reaper's own list. A child that still runs is told to
/// stop, with its family, before this returns; what lives 3 s later is killed. Never waits, never
/// throws: without the means to wait in the background the child and its group are killed at once.
void adopt(LaunchedChild child) noexcept;

/// The same of a child with a limit, which stays in force.
void adopt(LaunchedChild child, std::unique_ptr<ChildLimit> limit) noexcept;

/// The children that are not collected yet.
std::vector<pid_t> snapshot();

} // namespace BackgroundReaper

} // namespace vellmark
