#pragma once

#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
#include <string>

namespace vellmark {

/// The programs that the user has chosen to be run in place of those that are found, by the
/// identifier of their agent. Every copy of a Machine has the same ones, so that a choice holds
/// everywhere at once. Safe to use from any thread.
class ChosenExecutables {
public:
    std::optional<std::filesystem::path> of(const std::string& agent) const {
        const std::scoped_lock guard(lock_);
        const auto found = paths_.find(agent);
        return found == paths_.end() ? std::nullopt : std::optional(found->second);
    }

    /// True when that is another one than before.
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
