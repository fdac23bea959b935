#pragma once

#include "model/AgentUsageSnapshot.h"

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

} // namespace vellmark
