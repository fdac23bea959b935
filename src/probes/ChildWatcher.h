#pragma once

#include <cstdint>

namespace vellmark {

/// Starts a small process beside this one that outlives it in every case: when the program is
/// killed, it ends the children that are running then, within 2 s, and goes. It is told of each
/// registered child through a pipe and does nothing while the program lives.
///
/// Call once, before the first child is launched. False when the watcher cannot be started; the
/// program then works as it does without one.
bool startChildWatcher();

/// What the program writes to the watcher's standard input, in the machine's own byte order.
struct ChildWatcherMessage {
    enum class Event : std::int32_t { started = 1, ended = 2 };
    Event event = Event::started;
    std::int32_t pid = 0;
};

} // namespace vellmark
