#pragma once

#include "platform/Machine.h"

#include <optional>

namespace vellmark {

/// Whether the user has logged in to the Antigravity CLI, as far as that is seen without running
/// it: true when the system's credential store has its item; false when it has none and no other
/// way to log in is at hand, such as a key in the environment; otherwise absent, and only the CLI
/// can tell. Reads no secret. Answers within about 2 s.
std::optional<bool> antigravityIsLoggedIn(const Machine& machine);

} // namespace vellmark
