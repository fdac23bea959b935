#pragma once

#include "probes/VersionNumber.h"
#include "text/Instant.h"

namespace vellmark {

// What became possible with which version of the Claude Code CLI, found by trying them.

/// The first version that answers the usage query. It asks its service each time and has no figures
/// of its own to give.
inline constexpr VersionNumber claudeQueryVersion{{2, 1, 169}};
/// From here on an answer tells whether its figures were read for it.
inline constexpr VersionNumber claudeToldAgeVersion{{2, 1, 276}};

/// How long the CLI may keep figures that it has read.
inline constexpr Seconds claudeMemorySpan{3600};

} // namespace vellmark
