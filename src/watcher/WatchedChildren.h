#pragma once

#include "platform/ProcessTable.h"
#include "text/Instant.h"

#include <map>
#include <sys/types.h>

namespace vellmark {

/// The children of the watched program that are running now, each remembered for good: a process
/// that got the number of one that has ended is never touched.
class WatchedChildren {
public:
    /// `program` is the parent of every child.
    explicit WatchedChildren(pid_t program) : program_(program) {}

    void started(pid_t pid);
    void ended(pid_t pid) { children_.erase(pid); }

    /// Asks all and their own children to stop, and kills those that still live `grace` later.
    void endAll(Seconds grace);

private:
    pid_t program_;
    std::map<pid_t, ProcessHandle> children_;
};

} // namespace vellmark
