#pragma once

#include "store/UsageState.h"
#include "text/Instant.h"

namespace vellmark {

class Preferences;
struct CommandContext;

/// The last good readings of the enabled agents, as files have them; starts nothing. Figures that
/// are younger than two reading intervals count as those of now. What cannot be read is reported.
UsageState lastState(Preferences& preferences, const CommandContext& context, Instant now);
/// The same of one agent, enabled or not; nothing is reported.
UsageState lastStateOf(const AgentProviderID& agent, const Preferences& preferences,
                       const CommandContext& context, Instant now);

/// How often agents are read, as the settings have it.
Seconds readingInterval(const Preferences& preferences);

} // namespace vellmark
