#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vellmark {

// What a line of `codex app-server` says, as far as it is of interest. All other members are
// ignored. A number may also be written as a decimal text.

struct CodexWindow {
    std::optional<double> usedPercent;
    std::optional<double> windowDurationMins;
    /// Seconds since 1970-01-01 00:00 UTC.
    std::optional<double> resetsAt;
};

struct CodexRateLimits {
    std::optional<CodexWindow> primary;
    std::optional<CodexWindow> secondary;
    std::optional<std::string> planType;
    bool hasCredits = false;
};

struct CodexReply {
    std::int64_t id = 0;
    /// The first text called "email" in the result: an object's own before those of its members.
    std::optional<std::string> email;
    /// The result has an object "account".
    bool hasAccount = false;
    std::optional<CodexRateLimits> rateLimits;
};

/// Reads one line. Absent unless it is a JSON object with an integer "id" and an object "result":
/// notifications, error replies and anything that is no JSON (also what is nested deeper than 512
/// levels) say nothing. Takes linear time and no more memory than the texts it returns.
std::optional<CodexReply> parseCodexReply(std::string_view line);

} // namespace vellmark
