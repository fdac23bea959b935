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
    std::optional<std::filesystem::path> of(const std::string& agent) const;

    /// True when the choice has changed.
    bool choose(const std::string& agent, const std::optional<std::filesystem::path>& path);

private:
    mutable std::mutex lock_;
    std::map<std::string, std::filesystem::path> paths_;
};

} // namespace vellmark
