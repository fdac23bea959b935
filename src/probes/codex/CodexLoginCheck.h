#pragma once

#include "platform/Machine.h"
#include "text/Instant.h"

#include <filesystem>
#include <optional>

namespace vellmark {

/// Whether the user is logged in to Codex, by the CLI's first answer about the account; absent when
/// it does not answer within `limit` or cannot be launched. Blocks.
std::optional<bool> codexIsLoggedIn(const Machine& machine, const std::filesystem::path& executable,
                                    Seconds limit = Seconds(15));

} // namespace vellmark
