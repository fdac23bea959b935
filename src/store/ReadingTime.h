#pragma once

#include "store/UsageState.h"

namespace vellmark {

/// When what is shown was read. A failed attempt leaves earlier figures in place, and a reading may
/// keep a window that it did not contain: then `updatedAt` of the snapshot is not their time.

/// Of an agent's figures.
Instant readingTimeOf(const UsageState& state, const AgentUsageSnapshot& snapshot);
/// Of one window of the agent.
Instant readingTimeOf(const UsageState& state, const AgentUsageSnapshot& snapshot,
                      const UsageWindow& window);

/// Whether the agent's figures are old: nothing new came of the last attempt, or nobody has asked
/// the agent for so long that what they say about now is a guess.
bool isOldReading(const UsageState& state, const AgentUsageSnapshot& snapshot, Instant now);
/// The same of one window: one that the last reading left out is old, one that was told since is
/// as old as that.
bool isOldReading(const UsageState& state, const AgentUsageSnapshot& snapshot,
                  const UsageWindow& window, Instant now);

} // namespace vellmark
