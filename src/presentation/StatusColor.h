#pragma once

#include "model/AgentUsageSnapshot.h"
#include "probes/ProviderRegistry.h"

namespace vellmark {

/// The meaning of a status dot's colour.
enum class StatusColorRole {
    none,       ///< nothing known or unavailable: the system's secondary label colour
    refreshing, ///< the system's blue
    healthy,
    attention,
    critical,
};

StatusColorRole statusColorRole(UsageHealth health);

/// The colour on a light or dark ground. macOS takes its own colours for `none` and `refreshing`.
ColorComponents statusColor(StatusColorRole role, bool onDark);

} // namespace vellmark
