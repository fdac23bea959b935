#pragma once

#include <functional>
#include <sys/types.h>
#include <vector>

namespace vellmark {

/// The process-wide set of children that are running now. Every operation takes its one lock and
/// holds it for no longer than a look at the set.
namespace RunningChildren {

/// False when the set, or the calling thread's ChildGroup, is closed: the caller must end the child
/// at once.
bool insert(pid_t pid);

/// Before the child is collected, so that the set never holds a number that may be reused.
void remove(pid_t pid);

std::vector<pid_t> snapshot();

/// From now on nothing is launched any more (the program is ending).
void close();
/// Whether the set, or the calling thread's ChildGroup, is closed.
bool refusesLaunch();
/// Undoes close(), for tests.
void reopen();

enum class Event {
    started, ///< the child runs
    ended,   ///< it has ended and its number will soon be free
};

/// Called for every child with the lock held, so in order: must be quick and must not come back
/// here. Set once, before the first launch. A child that was left to the background reaper has
/// gone from the set, but is reported as ended only when it has.
using Observer = std::function<void(Event, pid_t)>;
void setObserver(Observer observer);

/// Takes `pid` out of the set while it still runs; whoever has it now calls `reportEnd`.
void handOver(pid_t pid);
void reportEnd(pid_t pid);

} // namespace RunningChildren

} // namespace vellmark
