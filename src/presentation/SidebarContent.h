#pragma once

#include "model/AgentUsageSnapshot.h"
#include "presentation/AgentPage.h"
#include "store/UsageState.h"
#include "text/Localization.h"

#include <optional>
#include <string>
#include <vector>

namespace vellmark {

/// A line of the sidebar: an entry, or a section's header (then only `title` counts).
struct SidebarItem {
    bool isSection = false;
    std::string title;
    AgentPage page;
    /// A symbol's name; empty for an agent, which shows its logo.
    std::string icon;
    /// The least that is left of the agent's windows ("16% left"), "Used up" or "Reset due"; of old
    /// figures the age ("34 min old"), for which alone there is room. May be empty.
    std::string value;
    /// What `value` has no room for: old figures.
    std::string help;
    /// On the logo.
    std::optional<UsageHealth> badge;
    std::string accessibilityText;

    bool operator==(const SidebarItem&) const = default;
};

std::vector<SidebarItem> sidebarItems(const UsageState& state, Instant now,
                                      const Localization& words);

} // namespace vellmark
