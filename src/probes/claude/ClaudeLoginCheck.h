#pragma once

#include "platform/Machine.h"
#include "text/Instant.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace vellmark {

/// What `claude auth status --json` tells. What it does not tell is absent.
struct ClaudeLogin {
    std::optional<bool> isLoggedIn;
    /// Billed by use: there are no quotas to read.
    bool usesAPIKey = false;
    /// Said to be without a subscription, which is more than not saying.
    bool lacksSubscription = false;
    std::optional<std::string> email;
    /// As people call it: "Max 20x", "Pro".
    std::optional<std::string> plan;
    bool operator==(const ClaudeLogin&) const = default;
};

/// Reads that answer; nothing is known where it is no JSON object. Pure, linear.
ClaudeLogin parseClaudeLogin(std::string_view answer);

/// The time that the login check gets everywhere.
inline constexpr Seconds claudeLoginCheckLimit{10.0};

/// Asks `executable`; nothing is known when it does not answer within `limit`. Blocks for about
/// `limit` plus `killGrace` at most.
ClaudeLogin claudeLogin(const Machine& machine, const std::filesystem::path& executable,
                        Seconds limit = claudeLoginCheckLimit, Seconds killGrace = Seconds(2.0));

} // namespace vellmark
