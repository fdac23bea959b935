#pragma once

#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
#include <string>

namespace vellmark {

/// The programs that the user has chosen to run instead of those that are found, by agent
/// identifier. All copies of a Machine share them, so that a choice takes effect everywhere at
/// once. Safe to use from any thread.
class ChosenExecutables {
public:
    std::optional<std::filesystem::path> of(const std::string& agent) const {
        const std::scoped_lock guard(lock_);
        const auto found = paths_.find(agent);
        return found == paths_.end() ? std::nullopt : std::optional(found->second);
    }

    /// True when the choice has changed.
    bool choose(const std::string& agent, std::optional<std::filesystem::path> path) {
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

private:
    mutable std::mutex lock_;
    std::map<std::string, std::filesystem::path> paths_;
};

} // namespace vellmark
