#pragma once

#include "platform/Machine.h"
#include "probes/ExecutableIdentity.h"
#include "probes/claude/ClaudeVersions.h"

#include <filesystem>
#include <mutex>
#include <optional>

namespace vellmark {

/// What was found out about the installed CLI; forgotten when it is replaced. Safe to use from any
/// thread.
class ClaudeExecutable {
public:
    struct Facts {
        /// Absent when `--version` told none.
        std::optional<VersionNumber> version;
        /// It has been seen not to know the usage query.
        bool refusesQuery = false;

        /// Worth asking, by all that is known.
        bool mayHaveQuery() const {
            return !refusesQuery && (!version || !(*version < claudeQueryVersion));
        }
    };

    /// Asks the CLI for its version the first time, in `workspace`: blocks for up to 6 s then.
    Facts facts(const Machine& machine, const std::filesystem::path& executable);
    void markQueryRefused(const std::filesystem::path& executable);

private:
    std::mutex mutex_;
    std::optional<ExecutableIdentity> identity_;
    Facts facts_;
};

} // namespace vellmark
