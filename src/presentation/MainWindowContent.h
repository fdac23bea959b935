#pragma once

#include "presentation/AgentPage.h"
#include "presentation/PopoverContent.h"

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

/// The line under the overview's head that is always there.
struct VerdictContent {
    /// `healthy` and `unavailable` are neutral.
    UsageHealth tone = UsageHealth::healthy;
    /// A symbol's name.
    std::string icon;
    /// Agent and window, stressed and before the text; empty where all agents are meant.
    std::string subject;
    std::string text;
    bool operator==(const VerdictContent&) const = default;
};

struct OverviewContent {
    std::string title;
    std::string subtitle;
    /// When the figures were read, or that they have not been yet.
    std::string updated;
    ControlContent refresh;
    /// Everything that the refresh button may say: it keeps the width of the widest.
    std::vector<std::string> refreshTitles;
    bool isRefreshing = false;
    VerdictContent verdict;
    /// That something is left to install or to log in to; empty when nothing is.
    std::string setupHint;
    std::vector<AgentBlockContent> cards;
    std::optional<NoAgentsContent> noAgents;

    bool operator==(const OverviewContent&) const = default;
};

/// `asksForSetup` adds the hint about what is left to set up.
OverviewContent overviewContent(const UsageState& state, Instant now, const Localization& words,
                                bool asksForSetup = false);

} // namespace vellmark
