#include "probes/claude/ClaudeExecutable.h"

#include "probes/ToolVersion.h"

namespace vellmark {

ClaudeExecutable::Facts ClaudeExecutable::facts(const Machine& machine,
                                                const std::filesystem::path& executable) {
    const ExecutableIdentity identity = ExecutableIdentity::of(executable);
    {
        const std::lock_guard lock(mutex_);
        if (identity_ == identity) {
            return facts_;
        }
    }
    // Not under the lock: other readers must not wait for a child.
    const auto text = toolVersion(machine, executable);
    const Facts found{.version = text ? VersionNumber::parse(*text) : std::nullopt,
                      .refusesQuery = false};
    const std::lock_guard lock(mutex_);
    identity_ = identity;
    facts_ = found;
    return found;
}

void ClaudeExecutable::markQueryRefused(const std::filesystem::path& executable) {
    const ExecutableIdentity identity = ExecutableIdentity::of(executable);
    const std::lock_guard lock(mutex_);
    if (identity_ == identity) {
        facts_.refusesQuery = true;
    }
}

} // namespace vellmark
