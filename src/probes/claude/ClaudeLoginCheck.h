#pragma once

#include "platform/Machine.h"
#include "text/Instant.h"

#include <filesystem>
#include <optional>

namespace vellmark {

/// The time that the login check gets everywhere.
inline constexpr Seconds claudeLoginCheckLimit{10.0};

/// Asks `executable` ("auth status --json") whether the user is logged in; absent when it does not
/// say so clearly within `limit`. Blocks for about `limit` plus `killGrace` at most.
std::optional<bool> claudeIsLoggedIn(const Machine& machine,
                                     const std::filesystem::path& executable,
                                     Seconds limit = claudeLoginCheckLimit,
                                     Seconds killGrace = Seconds(2.0));

} // namespace vellmark
