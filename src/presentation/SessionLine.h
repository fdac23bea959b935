#pragma once

#include "presentation/AgentStanding.h"

#include <string>
#include <vector>

namespace vellmark {

/// What an agent's own status line says of one window, or of the age of all.
struct SessionLinePart {
    std::string text;
    UsageHealth health = UsageHealth::healthy;
    bool operator==(const SessionLinePart&) const = default;
};
using SessionLine = std::vector<SessionLinePart>;

/// The agent's windows with what is left and when they reset, in ever fewer words: the first one
/// for which there is room is to be shown. Empty when nothing is known of them. `interval`: how
/// often agents are read; figures older than two of them say so.
std::vector<SessionLine> sessionLines(const AgentUsageSnapshot& snapshot, const UsageState& state,
                                      Seconds interval, Instant now, const Localization& words);

} // namespace vellmark
