#pragma once

#include "platform/Descriptor.h"

#include <spawn.h>
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

/// Makes the child keep the descriptors that `actions` put in place as standard streams and no
/// other, whoever opened it and however. To be called when `actions` is otherwise complete; changes
/// `flags`, which the caller sets on the attributes. Returns an error number, 0 for none.
int inheritStandardStreamsOnly(posix_spawn_file_actions_t& actions, short& flags);

} // namespace vellmark
