#include "platform/ProcessTable.h"

#include <utility>

namespace vellmark {

std::vector<ProcessHandle> directChildHandles(pid_t parent) {
    std::vector<ProcessHandle> handles;
    for (const pid_t child : directChildren(parent))
        if (auto handle = ProcessHandle::openChild(child, parent))
            handles.push_back(*std::move(handle));
    return handles;
}

std::vector<ProcessHandle> ProcessHandle::directChildren() const {
    auto handles = directChildHandles(pid());
    // Looked at only now: if the number is still taken by this process, it was all the while.
    if (!signal(0))
        handles.clear();
    return handles;
}

} // namespace vellmark
