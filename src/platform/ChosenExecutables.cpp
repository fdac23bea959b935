#include "platform/ChosenExecutables.h"

namespace vellmark {

std::optional<std::filesystem::path> ChosenExecutables::of(const std::string& agent) const {
    const std::scoped_lock guard(lock_);
    const auto found = paths_.find(agent);
    return found == paths_.end() ? std::nullopt : std::optional(found->second);
}

bool ChosenExecutables::choose(const std::string& agent,
                               const std::optional<std::filesystem::path>& path) {
    const std::scoped_lock guard(lock_);
    const auto found = paths_.find(agent);
    const auto before = found == paths_.end() ? std::nullopt : std::optional(found->second);
    if (path) {
        paths_.insert_or_assign(agent, *path);
    } else {
        paths_.erase(agent);
    }
    return before != path;
}

} // namespace vellmark
