#pragma once

#include "platform/Machine.h"
#include "probes/AgentUsageProvider.h"
#include "probes/BoundedProcess.h"
#include "probes/PrivateTemporaryFile.h"
#include "probes/claude/ClaudeSession.h"
#include "probes/claude/ClaudeSessionScript.h"
#include "probes/claude/ModelWindowMemory.h"
#include "text/Instant.h"

#include <chrono>
#include <filesystem>

namespace vellmark {

/// Reads Claude's quotas off its screens: the CLI has no query for them, so an `expect` script
/// opens its status and usage screens and everything that the terminal shows is recorded in a
/// private file, which is deleted afterwards.
///
/// A fetch checks the login first and gives up before the session when its budget is nearly spent.
/// It blocks for `hardLimit` plus `Limits::killGrace` at most, plus the login check's own grace.
/// Beside UsageProviderError it throws std::filesystem::filesystem_error when the directory that
/// the CLI is started in cannot be made. A capture that cannot be read is kept, redacted, in the
/// support directory's "Diagnostics".
class ClaudeUsageProvider : public AgentUsageProvider {
public:
    struct Limits {
        Seconds loginCheck{10.0};
        Seconds loginCheckGrace{2.0};
        /// A session is started only when more than this is left of the budget.
        Seconds leastForSession{5.0};
        Seconds killGrace{3.0};
        ClaudeSessionTimings session;
    };

    static constexpr Seconds defaultHardLimit{45.0};
    static constexpr const char* defaultInterpreter = "/usr/bin/expect";

    /// `hardLimit` is the budget of one fetch. Tests give shorter limits.
    explicit ClaudeUsageProvider(Machine machine, Seconds hardLimit = defaultHardLimit);
    ClaudeUsageProvider(Machine machine, Seconds hardLimit, Limits limits,
                        std::filesystem::path interpreter = defaultInterpreter);

    AgentProviderID id() const override { return AgentProviderID::claude(); }
    AgentUsageSnapshot fetch() override;

private:
    using Clock = std::chrono::steady_clock;

    AgentUsageSnapshot readSession(const std::filesystem::path& claude, Clock::time_point start);
    BoundedProcessResult runScript(const std::filesystem::path& claude,
                                   const PrivateTemporaryFile& log, Clock::time_point start);
    /// As interpretClaudeSession, remembering and keeping what is to be.
    AgentUsageSnapshot interpret(const ClaudeScreen& screen, const ClaudeSessionEnd& end);
    std::filesystem::path diagnostics() const;

    Machine machine_;
    std::filesystem::path workspace_;
    Seconds hardLimit_;
    Limits limits_;
    std::filesystem::path interpreter_;
    ModelWindowMemory modelWindows_;
};

} // namespace vellmark
