#include "platform/ProcessTable.h"

#include <cerrno>
#include <utility>

namespace vellmark {

std::vector<ProcessHandle> directChildHandles(pid_t parent) {
    std::vector<ProcessHandle> handles;
    for (const pid_t child : directChildren(parent)) {
        if (auto handle = ProcessHandle::openChild(child, parent)) {
            handles.push_back(*std::move(handle));
        }
    }
    return handles;
}

std::optional<std::vector<ProcessHandle>> groupMemberHandles(pid_t group) {
    const auto members = processGroupMembers(group);
    if (!members) {
        return std::nullopt;
    }
    std::vector<ProcessHandle> handles;
    for (const pid_t member : *members) {
        auto handle = ProcessHandle::open(member);
        if (handle && handle->isInGroup(group)) {
            handles.push_back(*std::move(handle));
        } else if (!handle && (errno == EMFILE || errno == ENFILE)) {
            return std::nullopt;
        }
    }
    return handles;
}

} // namespace vellmark
