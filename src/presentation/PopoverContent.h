#pragma once

#include "presentation/AgentBlockContent.h"
#include "presentation/PopoverTab.h"
#include "presentation/UsageVerdict.h"

#include <optional>
#include <string>
#include <vector>

namespace vellmark {

/// A label on a control: its words, the icon before them (a symbol's name, or empty), its tooltip.
struct ControlContent {
    std::string title;
    std::string icon;
    std::string help;
    bool operator==(const ControlContent&) const = default;
};

struct PopoverTabContent {
    PopoverTab tab;
    std::string title;
    /// On the logo.
    std::optional<UsageHealth> badge;
    std::string accessibilityText;
    bool operator==(const PopoverTabContent&) const = default;
};

/// What stands in place of agents when none is enabled.
struct NoAgentsContent {
    std::string icon;
    std::string title;
    std::string text;
    std::string buttonTitle;
    bool operator==(const NoAgentsContent&) const = default;
};
NoAgentsContent noAgentsContent(const Localization& words);

/// Everything that the popover shows, as words and numbers.
struct PopoverContent {
    std::string title;
    VerdictLine statusLine;
    bool isRefreshing = false;
    ControlContent refresh;
    /// Empty when no agent is enabled: then there is no tab strip either.
    std::vector<PopoverTabContent> tabs;
    PopoverTab selectedTab;
    /// One per agent, in the agents' order, whatever tab is selected.
    std::vector<AgentBlockContent> agents;
    std::optional<NoAgentsContent> noAgents;
    ControlContent openWindow;
    ControlContent about;
    ControlContent quit;
    /// Of an agent's tab.
    ControlContent openPage;

    /// The agent of the selected tab; null on the overview.
    const AgentBlockContent* selectedAgent() const;

    bool operator==(const PopoverContent&) const = default;
};

PopoverContent popoverContent(const UsageState& state, std::string_view storedTab, Instant now,
                              const Localization& words);

} // namespace vellmark
