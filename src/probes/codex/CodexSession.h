#pragma once

#include "platform/Machine.h"
#include "probes/ChildSession.h"
#include "probes/codex/CodexReply.h"
#include "probes/codex/LineBuffer.h"
#include "text/Instant.h"

#include <chrono>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

namespace vellmark {

/// One conversation with `codex app-server` over pipes. The child is asked to stop when the session
/// goes; nobody waits for that. One thread.
class CodexSession {
public:
    /// Throws std::system_error when the CLI cannot be launched.
    CodexSession(const Machine& machine, const std::filesystem::path& executable,
                 ChildSession::ErrorStream errors);

    /// Writes all `messages` at once, then hands every reply to `take` until it returns true (the
    /// replies that came in the same read are still handed over), the output ends, a line grows
    /// out of bounds, or `limit` has passed. True when `take` was satisfied.
    bool converse(std::string_view messages, Seconds limit,
                  const std::function<bool(CodexReply)>& take);

    /// The limit of the conversation has passed.
    bool isOverdue() const { return Clock::now() >= deadline_; }

    /// What stands on the error pipe; empty when that is no UTF-8.
    std::string errorText();

private:
    using Clock = std::chrono::steady_clock;

    Seconds timeLeft() const;

    ChildSession child_;
    LineBuffer lines_;
    Clock::time_point deadline_{};
};

} // namespace vellmark
