#pragma once

#include "platform/ProcessTable.h"

#include <functional>
#include <sys/types.h>
#include <vector>

namespace vellmark {

/// The process-wide set of children that are running now. Every operation takes its one lock and
/// holds it for no longer than a look at the set, or a signal.
namespace RunningChildren {

/// False when the set, or the calling thread's ChildGroup, is closed: the caller must end the child
/// at once.
bool insert(pid_t pid);

/// Only for a child that is not collected yet; one that was handed over stays known.
void remove(pid_t pid);

std::vector<pid_t> snapshot();

/// From now on nothing is launched any more (the program is ending).
void close();
/// Whether the set, or the calling thread's ChildGroup, is closed.
bool refusesLaunch();
/// Undoes close(), for tests.
void reopen();

/// Sends a signal to `target`, a child in the set or left to the background reaper, or with its
/// number below zero to its process group; false for others. Cannot reach a reused number: nobody
/// collects a child while this looks at the set.
bool signal(pid_t target, int number);
/// Whether `pid` is such a child and has not ended.
bool isRunning(pid_t pid);

/// What the observer is told. Together the reports name every process that must not outlive the
/// program.
struct Report {
    enum class Event {
        started,  ///< the child runs
        attached, ///< a process that a child has started is to end with the program too
        ended,    ///< the child has ended and its number will soon be free
    };
    Event event = Event::started;
    pid_t pid = 0;
    /// A moment at which the process had this number.
    ProcessTime at = 0;
};

/// Called for every child with the lock held, so in order: must be quick and must not come back
/// here. It is told at once of what runs already. A child that was left to the background reaper
/// has gone from the set, but is reported as ended only when it is collected.
using Observer = std::function<void(const Report&)>;
void setObserver(Observer observer);

/// `process` must end with `child`, even if nothing else leads to it once that has ended.
void attach(pid_t child, const ProcessHandle& process);

/// Takes `pid` out of the set while it is not collected; it stays known.
void handOver(pid_t pid);
/// Right before the child is collected, so that a number that may be reused is never known.
void reportEnd(pid_t pid);

} // namespace RunningChildren

} // namespace vellmark
