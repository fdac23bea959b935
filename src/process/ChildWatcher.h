#pragma once

#include "platform/ChildLaunch.h"
#include "platform/ProcessTable.h"

#include <cstdint>

namespace vellmark {

/// Starts a small process that outlives this one in every case: when the program is killed, it ends
/// the children that are running then, within 2 s, and exits. It learns through a pipe of each
/// child, from the child itself before that runs its program, and of each process that may outlive
/// a child; it does nothing while the program lives. If it dies, it is started again.
///
/// Call once, before the first child is launched. False when the watcher cannot be started; the
/// program then works as it does without one.
bool startChildWatcher();

/// What a child that is being launched tells the watcher, if there is one.
void announceToChildWatcher(ChildLaunch::Stage stage);

/// What is written to the watcher's standard input, in the machine's own byte order.
struct ChildWatcherMessage {
    enum class Event : std::int32_t { started = 1, ended = 2, attached = 3 };
    Event event = Event::started;
    std::int32_t pid = 0;
    /// A moment at which the process had this number.
    ProcessTime at = 0;
};

} // namespace vellmark
