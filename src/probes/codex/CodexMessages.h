#pragma once

#include <string_view>

namespace vellmark::CodexMessages {

// Requests to `codex app-server`: JSON-RPC without the version member, one message a line. They are
// sent at once, without waiting for the answer to the first.

inline constexpr int accountID = 2;
inline constexpr int rateLimitsID = 3;

/// Asks for the account.
inline constexpr std::string_view loginCheck =
    "{\"method\":\"initialize\",\"id\":1,\"params\":{\"clientInfo\":{\"name\":\"vellmark\","
    "\"title\":\"Vellmark\",\"version\":\"1.0.0\"}}}\n"
    "{\"method\":\"initialized\",\"params\":{}}\n"
    "{\"method\":\"account/read\",\"id\":2,\"params\":{\"refreshToken\":false}}\n";

/// Asks for the account and its rate limits.
inline constexpr std::string_view usage =
    "{\"method\":\"initialize\",\"id\":1,\"params\":{\"clientInfo\":{\"name\":\"vellmark\","
    "\"title\":\"Vellmark\",\"version\":\"1.0.0\"}}}\n"
    "{\"method\":\"initialized\",\"params\":{}}\n"
    "{\"method\":\"account/read\",\"id\":2,\"params\":{\"refreshToken\":false}}\n"
    "{\"method\":\"account/rateLimits/read\",\"id\":3,\"params\":{}}\n";

static_assert(usage.starts_with(loginCheck));

} // namespace vellmark::CodexMessages
