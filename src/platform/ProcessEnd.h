#pragma once

#include "platform/Descriptor.h"

#include <sys/types.h>

namespace vellmark {

/// The end of one child of this program as an event: a descriptor that is readable, for `poll`,
/// from the moment when the child has ended (it may be a zombie then, or still become one in the
/// next instant). Works for a child that has ended already as long as nobody has collected it.
class ProcessEnd {
public:
    /// Throws std::system_error when the system has no descriptors left.
    explicit ProcessEnd(pid_t child);

    int descriptor() const { return descriptor_.get(); }

private:
    Descriptor descriptor_;
};

} // namespace vellmark
