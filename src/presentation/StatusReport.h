#pragma once

#include "presentation/AgentBlockContent.h"
#include "presentation/StatusItemContent.h"
#include "store/UsageState.h"
#include "text/Localization.h"

#include <optional>
#include <string>
#include <vector>

namespace vellmark {

/// What a status is told of: all windows, or those of an agent or of one name.
struct StatusChoice {
    std::optional<AgentProviderID> agent = {};
    std::optional<std::string> window = {};
    /// Also each agent by itself, which takes a third of the time.
    bool listsAgents = true;
};

/// The window that binds: nothing presses more than it.
struct StatusWindow {
    AgentProviderID agent;
    std::string windowID;
    /// "Claude Code" and "Claude".
    std::string agentName;
    std::string shortAgentName;
    std::string account;
    std::string plan;
    /// In full and in brief.
    std::string label;
    std::string shortLabel;
    double usedPercent = 0;
    double leftPercent = 0;
    /// "62%" each; `value` is what the user reads first, in words: "62% left", "38% used".
    std::string used;
    std::string left;
    std::string figure;
    std::string value;
    UsageHealth health = UsageHealth::unavailable;
    /// "Resets in 1 h 27 min · 4:15 PM", never empty; in parts "1 h 27 min" and "4:15 PM", empty
    /// where the reset is not known or past.
    std::string reset;
    std::string resetIn;
    std::string resetAt;
    std::optional<Instant> resetsAt;
    /// Why nothing can be used in spite of what is left, or that a reset is due; empty else.
    std::string obstacle;
    /// "Runs out in 16 min, 70 min before reset"; empty without grounds.
    std::string outlook;
    /// Absent without grounds.
    std::optional<Forecast> forecast;
    Instant readAt{};
    /// Since then; never below 0.
    Seconds age{0};
    /// "34 min old"; empty for figures of the last two readings.
    std::string ageText;
};

/// What status bars and prompts are told, in no particular form.
struct StatusReport {
    /// Of what was chosen.
    UsageHealth health = UsageHealth::unavailable;
    std::string healthText;
    /// What there is to say where no window is known.
    std::string verdict;
    std::optional<StatusWindow> window;
    /// The chosen agents with the chosen windows. Like `ages` and `item` not there unless agents
    /// are listed.
    std::vector<AgentBlockContent> agents;
    /// In the order of `agents`, in seconds; absent where nothing was read.
    std::vector<std::optional<Seconds>> ages;
    StatusItemContent item;
    /// "Read again", "Open Vellmark": what a bar's menu offers.
    std::string refreshTitle;
    std::string openTitle;
};

/// `interval`: how often agents are read. Figures older than two of them have an age.
StatusReport statusReport(const UsageState& state, const StatusChoice& choice, Seconds interval,
                          Instant now, const Localization& words);

} // namespace vellmark
