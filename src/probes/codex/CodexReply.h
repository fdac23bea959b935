#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vellmark {

// What matters in a line of `codex app-server`. Members are named as in the protocol's schema,
// which the CLI can print; all others are ignored. A number may also be written as a decimal text,
// and times are seconds since 1970-01-01 00:00 UTC.

struct CodexWindow {
    std::optional<double> usedPercent;
    std::optional<double> windowDurationMins;
    std::optional<double> resetsAt;
};

/// What the user may spend of a workspace's credits.
struct CodexIndividualLimit {
    std::optional<double> remainingPercent;
    std::optional<double> resetsAt;
};

struct CodexRateLimits {
    std::optional<std::string> limitID;
    std::optional<std::string> limitName;
    std::optional<CodexWindow> primary;
    std::optional<CodexWindow> secondary;
    std::optional<CodexIndividualLimit> individualLimit;
    std::optional<std::string> planType;
    std::optional<std::string> reachedType;
    std::optional<bool> spendControlReached;
    std::optional<bool> hasCredits;
};

/// Resets that the user has in hand.
struct CodexResetCredits {
    std::optional<double> availableCount;
    /// The earliest expiry of those that are available.
    std::optional<double> nextExpiry;
};

struct CodexReply {
    std::int64_t id = 0;
    /// The request was refused, with these words; nothing else is told then.
    std::optional<std::string> refusal;
    /// The first text called "email" in the result: an object's own before those of its members.
    std::optional<std::string> email;
    /// The result has an object "account".
    bool hasAccount = false;
    /// "chatgpt", "apiKey", …
    std::optional<std::string> accountType;
    std::optional<CodexRateLimits> rateLimits;
    /// The members of "rateLimitsByLimitId", among them the one that `rateLimits` repeats; an
    /// identifier that is missing inside is the member's name. No more than
    /// `mostLimits`.
    std::vector<CodexRateLimits> limits;
    std::optional<bool> ordinaryUsageAllowed;
    CodexResetCredits resetCredits;

    static constexpr std::size_t mostLimits = 26;
};

/// Reads one line. Absent unless it is a JSON object with an integer "id" and an object "result" or
/// "error": notifications and anything that is no JSON (also what is nested deeper than 512 levels)
/// say nothing. Takes linear time and no more memory than the texts it returns.
std::optional<CodexReply> parseCodexReply(std::string_view line);

} // namespace vellmark
