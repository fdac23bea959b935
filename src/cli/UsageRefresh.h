#pragma once

#include "model/AgentProviderID.h"
#include "presentation/AgentBlockContent.h"
#include "store/UsageState.h"

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace vellmark {

struct CommandContext;

/// What is to be read, and what is shown meanwhile.
struct RefreshWish {
    /// Absent: the enabled ones.
    std::optional<std::set<AgentProviderID>> agents = {};
    /// Read in this way where an agent has it.
    std::optional<std::string> way = {};
    /// On a terminal the last figures are shown at once, and new ones as they come; else a line
    /// tells which agents are still being read.
    bool showsFigures = false;
    /// Told what was read when nothing has stopped the refresh: the disk is still at work.
    std::function<void(const UsageState&)> show = {};
};

/// One refresh through the store, waited for on the terminal. Returns ExitStatus::done, or 128 +
/// the signal that ended it.
int refreshUsage(const CommandContext& context, RefreshWish wish, UsageState& state);

/// The agents as the terminal shows them.
std::vector<AgentBlockContent> agentBlocks(const UsageState& state, Instant now,
                                           const Localization& words);

} // namespace vellmark
