#pragma once

#include "model/AgentProviderID.h"
#include "store/UsageState.h"

#include <optional>
#include <set>
#include <string>

namespace vellmark {

struct CommandContext;

/// One refresh through the store, waited for on the terminal: of the enabled agents, or of those
/// named. Returns ExitStatus::done, or 128 + the signal that ended it.
int refreshUsage(const CommandContext& context, std::optional<std::set<AgentProviderID>> agents,
                 UsageState& state);

/// The state with the readings of the last refresh alone: an agent that failed shows no earlier
/// figures.
UsageState readingsOfThisRun(UsageState state);

/// The agents with their windows, as the terminal shows them.
std::string usageText(const UsageState& state, const CommandContext& context);

} // namespace vellmark
