#pragma once

#include "platform/Machine.h"
#include "probes/codex/CodexReply.h"
#include "probes/codex/LineBuffer.h"
#include "process/ChildSession.h"
#include "text/Instant.h"

#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace vellmark {

/// One conversation with `codex app-server` over pipes. The child runs in a directory of the
/// program's own, and is asked to stop when the session goes; nobody waits for that. One thread.
class CodexConversation {
public:
    /// Throws std::filesystem::filesystem_error when the directory cannot be made, and
    /// std::system_error when the CLI cannot be launched.
    CodexConversation(const Machine& machine, const std::filesystem::path& executable,
                      ChildSession::ErrorStream errors);

    /// What a reply has settled: how much longer the conversation may go on, from now; absent where
    /// it changes nothing.
    using Patience = std::optional<Seconds>;

    /// Writes all `messages` at once, then hands every reply to `take` until the patience that it
    /// returned last has passed (the replies that came in the same read are still handed over), the
    /// output ends, a line grows out of bounds, or `limit` has passed.
    void converse(std::string_view messages, Seconds limit,
                  const std::function<Patience(CodexReply)>& take);

    /// The limit of the conversation has passed.
    bool isOverdue() const { return Clock::now() >= deadline_; }

    /// What stands on the error pipe; empty when that is no UTF-8.
    std::string errorText();

private:
    using Clock = std::chrono::steady_clock;

    ChildSession child_;
    LineBuffer lines_;
    Clock::time_point deadline_{};
};

} // namespace vellmark
