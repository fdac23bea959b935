#pragma once

#include "platform/Machine.h"
#include "probes/claude/ClaudeSessionInterpretation.h"
#include "probes/claude/ClaudeSessionScript.h"
#include "probes/claude/ModelWindowMemory.h"
#include "process/BoundedProcess.h"
#include "process/PrivateTemporaryFile.h"
#include "text/Instant.h"

#include <chrono>
#include <filesystem>

namespace vellmark {

/// Reads Claude's quotas off its screens: an `expect` script opens its status and usage screens,
/// and everything that the terminal shows is recorded in a private file, which is deleted
/// afterwards. For versions of the CLI that cannot be asked: each session sends a message to a
/// model, which spends a token of the quota.
///
/// A capture that cannot be read is kept, redacted, in the support directory's "Diagnostics". Safe
/// to use from several threads.
class ClaudeSessionReader {
public:
    struct Limits {
        /// A session is started only when more than this is left of the budget.
        Seconds least{5.0};
        Seconds killGrace{3.0};
        ClaudeSessionTimings timings;
    };
    /// How much time a fetch has in all, and since when.
    struct Budget {
        std::chrono::steady_clock::time_point start;
        Seconds limit;
        Seconds spent() const { return std::chrono::steady_clock::now() - start; }
        Seconds left() const { return limit - spent(); }
    };

    ClaudeSessionReader(const Machine& machine, std::filesystem::path workspace, Limits limits,
                        std::filesystem::path interpreter);

    /// Blocks for as long as the budget, plus `Limits::killGrace`. Throws UsageProviderError.
    AgentUsageSnapshot read(const std::filesystem::path& claude, const Budget& budget);

    /// The model's window was seen in a reading made another way.
    void markModelWindowSeen(Instant now) { modelWindows_.markSeen(now); }

private:
    BoundedProcessResult runScript(const std::filesystem::path& claude,
                                   const PrivateTemporaryFile& log, const Budget& budget);
    /// Like interpretClaudeSession; also remembers and keeps what it should.
    AgentUsageSnapshot interpret(const ClaudeScreen& screen, const ClaudeSessionEnd& end,
                                 const PrivateTemporaryFile& log);
    std::filesystem::path diagnostics() const;

    const Machine& machine_;
    std::filesystem::path workspace_;
    Limits limits_;
    std::filesystem::path interpreter_;
    ModelWindowMemory modelWindows_;
};

} // namespace vellmark
