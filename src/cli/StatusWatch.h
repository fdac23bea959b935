#pragma once

#include "cli/StatusForm.h"
#include "text/Instant.h"

#include <optional>

namespace vellmark {

struct CommandContext;

/// What stays on the screen tells spans and ages in minutes: how often it is drawn anew, and how
/// much later will do.
inline constexpr Seconds redrawInterval{30};
inline constexpr Seconds redrawTolerance{5};

/// Prints a status whenever it reads differently than before, for programs that read lines, until
/// their reader has gone or a signal ends it. Follows the readings of any program that makes some,
/// the desktop one say; where nobody does for an `interval` (without one: that of the settings) it
/// reads the agents itself. Returns the exit status.
int watchStatus(const CommandContext& context, const StatusForm& form,
                std::optional<Seconds> interval);

} // namespace vellmark
