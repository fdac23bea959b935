#pragma once

#include "store/UsageState.h"
#include "text/Localization.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vellmark {

/// A line of the status item's menu.
struct StatusMenuItem {
    /// Empty for a separator.
    std::string title;
    /// One of `menuAction`, or that of an agent.
    std::string action;
    /// Its submenu; then it has no action.
    std::vector<StatusMenuItem> items = {};

    bool isSeparator() const { return title.empty(); }
    bool operator==(const StatusMenuItem&) const = default;
};

/// The menu of the status item where the desktop shows one, by a right click or by any: a line for
/// each agent, with a line for each of its windows below it, then what can be done. Says when
/// things are, not in how long: a menu that changes every minute may close under the pointer.
std::vector<StatusMenuItem> statusMenuContent(const UsageState& state, Instant now,
                                              const Localization& words);

/// The agent whose line was chosen; absent for other actions.
std::optional<AgentProviderID> agentOfMenuAction(std::string_view action);

} // namespace vellmark
