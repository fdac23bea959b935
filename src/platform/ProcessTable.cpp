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

} // namespace vellmark
