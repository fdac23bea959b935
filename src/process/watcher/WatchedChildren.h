#pragma once

#include "platform/ProcessTable.h"
#include "text/Instant.h"

#include <map>
#include <sys/types.h>
#include <vector>

namespace vellmark {

/// The children of the watched program that are running now, and what must end with them. Each is
/// remembered for good: a process that reuses the number of one that has ended is never touched.
class WatchedChildren {
public:
    /// `at` is a moment at which the process had the number.
    void started(pid_t pid, ProcessTime at);
    void ended(pid_t pid);
    /// A process that is to end with the program although it may outlive the child it belongs to.
    void attached(pid_t pid, ProcessTime at);

    /// Asks all to stop, with the families of the children, and kills those that still live `grace`
    /// later.
    void endAll(Seconds grace);

private:
    std::map<pid_t, ProcessHandle> children_;
    std::vector<ProcessHandle> attached_;
};

} // namespace vellmark
