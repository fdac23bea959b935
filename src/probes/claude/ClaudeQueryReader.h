#pragma once

#include "platform/Machine.h"
#include "probes/claude/ClaudeQuery.h"
#include "text/Instant.h"

#include <filesystem>

namespace vellmark {

/// Runs Claude's usage query as a bounded child.
class ClaudeQueryReader {
public:
    struct Limits {
        Seconds answer{15.0};
        Seconds killGrace{3.0};
    };

    /// What the child left that tells whether to try another way.
    struct Result {
        ClaudeQueryReply reply;
        bool timedOut = false;
        /// The last of what it said beside an answer.
        std::string words;
    };

    ClaudeQueryReader(const Machine& machine, std::filesystem::path workspace, Limits limits)
        : machine_(machine), workspace_(std::move(workspace)), limits_(limits) {}

    /// Blocks for up to the smaller of `most` and the answer's limit, plus the grace. Throws
    /// UsageProviderError when the CLI cannot be launched.
    Result ask(const std::filesystem::path& claude, Seconds most) const;

private:
    const Machine& machine_;
    std::filesystem::path workspace_;
    Limits limits_;
};

} // namespace vellmark
