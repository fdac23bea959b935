#pragma once

#include "platform/Descriptor.h"

#include <string_view>
#include <sys/types.h>

namespace vellmark {

/// What a parent needs of the system to connect a child.

struct Pipe {
    Descriptor readEnd;
    Descriptor writeEnd;
};

/// A pipe whose ends no child inherits by itself and which do not take the numbers of the standard
/// streams. Throws std::system_error.
Pipe makePipe();

/// Like write(2), but a reader that has gone is the error EPIPE alone: no signal is raised, and the
/// program's own handling of signals stays as it is. `descriptor` is a write end from `makePipe`.
ssize_t writeWithoutSignal(int descriptor, std::string_view bytes);

/// Makes every descriptor but the standard streams, whoever opened it and however, close when this
/// process becomes another program. May be called where a signal handler may.
void leaveOpenStandardStreamsOnly();

} // namespace vellmark
