#pragma once

#include "platform/Descriptor.h"

#include <sys/types.h>

namespace vellmark {

/// The end of one child of this program as an event: a descriptor for `poll` that becomes readable
/// when the child ends (which may be a zombie by then, or become one in the next instant). Works
/// even for a child that has already ended, as long as nobody has collected it.
class ProcessEnd {
public:
    /// Throws std::system_error when the system has no descriptors left.
    explicit ProcessEnd(pid_t child);

    int descriptor() const { return descriptor_.get(); }

private:
    Descriptor descriptor_;
};

} // namespace vellmark
