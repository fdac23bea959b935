#pragma once

#include "presentation/PageHeadContent.h"
#include "presentation/PopoverContent.h"

#include <optional>
#include <string>
#include <vector>

namespace vellmark {

/// The line under the overview's head that is always there.
struct VerdictContent {
    /// `healthy` and `unavailable` are neutral.
    UsageHealth tone = UsageHealth::healthy;
    /// A symbol's name.
    std::string icon;
    /// Agent and window, stressed and before the text; empty where all agents are meant.
    std::string subject;
    std::string text;
    /// Both, with how bad it is in words.
    std::string accessibilityText;
    bool operator==(const VerdictContent&) const = default;
};

struct OverviewPageContent {
    PageHeadContent head;
    VerdictContent verdict;
    /// Why files are not written; empty while they are.
    std::string storage;
    std::vector<AgentBlockContent> cards;
    std::optional<NoAgentsContent> noAgents;

    bool operator==(const OverviewPageContent&) const = default;
};

OverviewPageContent overviewPageContent(const UsageState& state, Instant now,
                                        const Localization& words);

} // namespace vellmark
