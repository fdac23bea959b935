#pragma once

#include "platform/Machine.h"
#include "presentation/AgentBlockContent.h"
#include "presentation/ChartContent.h"
#include "presentation/PageHeadContent.h"
#include "probes/AgentFacts.h"
#include "store/UsageHistory.h"

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace vellmark {

/// How far the charts of an agent's page may reach back; the preference "AgentPageRange" keeps the
/// choice.
inline constexpr std::array agentPageRanges{ChartRange::day, ChartRange::week};
/// The range that the preference means; anything else than one of those is a day.
ChartRange agentPageRange(std::string_view stored);

/// What an agent's page asks of the application; nothing happens until it is set. Main thread.
struct AgentPageActions {
    using OfAgent = std::function<void(const AgentProviderID&)>;
    /// The page of this agent is shown now.
    OfAgent shown = [](const AgentProviderID&) {};
    /// Reads this agent alone.
    OfAgent refresh = [](const AgentProviderID&) {};
    /// Looks for its CLI, its version and the login anew, and reads it.
    OfAgent recheck = [](const AgentProviderID&) {};
    std::function<void(ChartRange)> setRange = [](ChartRange) {};
    std::function<void(const std::vector<AgentProviderID>&)> setOrder =
        [](const std::vector<AgentProviderID>&) {};
    OfAgent switchOff = [](const AgentProviderID&) {};
};

/// One quota window with its course.
struct AgentWindowContent {
    UsageRowContent row;
    /// The health in a word; of old figures as of then, with their age.
    std::string statusText;
    StatusColorRole dot = StatusColorRole::none;
    /// "Lasts until the reset"; empty where `row` has a forecast line, or without grounds.
    std::string outlook;
    std::string chartTitle;
    ChartContent chart;
    /// That nothing has been recorded yet; empty else.
    std::string chartNote;

    bool operator==(const AgentWindowContent&) const = default;
};

/// A fact about how the agent is read: "Path", "~/.local/bin/claude".
struct ReadingFactContent {
    std::string label;
    std::string value;
    /// Behind the value, in small type; may be empty.
    std::string detail;
    bool isPath = false;
    /// What the button beside the value copies; empty without a button.
    std::string copied;
    ControlContent copy;

    bool operator==(const ReadingFactContent&) const = default;
};

/// A phase of the last reading.
struct ReadingPhaseContent {
    std::string name;
    /// Of the whole, 0 to 1.
    double share = 0;
    bool operator==(const ReadingPhaseContent&) const = default;
};

/// How the agent is read, and its place among the others.
struct ReadingCardContent {
    std::string balancesTitle;
    std::vector<BalanceRowContent> balances;
    std::string title;
    ControlContent recheck;
    bool isRechecking = false;
    std::vector<ReadingFactContent> facts;
    /// In the order in which they came; empty where the reading tells none.
    std::vector<ReadingPhaseContent> phases;
    /// "Start 1.1 · Status 0.6 · Usage 2.9 s".
    std::string phasesText;
    /// "Order" and "2 of 3"; empty for the only agent.
    std::string orderTitle;
    std::string position;
    ControlContent earlier;
    ControlContent later;
    /// All agents, with this one moved; empty where it cannot be.
    std::vector<AgentProviderID> orderIfEarlier;
    std::vector<AgentProviderID> orderIfLater;
    ControlContent switchOff;

    bool operator==(const ReadingCardContent&) const = default;
};

/// An agent's own page.
struct AgentPageContent {
    PageHeadContent head;
    /// What popover and overview show of the agent: state, failure, notes. Its rows and balances
    /// stand in `windows` and `reading`.
    AgentBlockContent agent;
    std::vector<AgentWindowContent> windows;
    ReadingCardContent reading;
    /// The words of `agentPageRanges`; empty without a window.
    std::vector<std::string> ranges;
    ChartRange range = ChartRange::day;
    /// Name of the choice for assistive software.
    std::string rangeTitle;

    bool operator==(const AgentPageContent&) const = default;
};

/// Where the content of an agent's page comes from.
struct AgentPageSources {
    const UsageState& state;
    const UsageHistory& history;
    const Machine& machine;
    /// Null as long as nothing is known.
    const AgentFacts* facts = nullptr;
    bool isAskingForFacts = false;
    ChartRange range = ChartRange::day;
};

/// `snapshot` is one of the state's.
AgentPageContent agentPageContent(const AgentUsageSnapshot& snapshot,
                                  const AgentPageSources& sources, Instant now,
                                  const Localization& words);

} // namespace vellmark
