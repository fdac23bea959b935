#pragma once

namespace vellmark {

/// Makes this process behave as if there were no session bus, unless one answers within 2 s: the
/// libraries that it uses would wait for a stopped one without end.
///
/// One that comes later serves this program all the same, though not the toolkit.
///
/// Changes the environment of the process, so: call at the start of `main`, before other threads
/// run. Does nothing where the system has no such bus.
void leaveOutUnansweringSessionBus();

} // namespace vellmark
