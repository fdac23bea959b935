#pragma once

#include "presentation/ChartContent.h"
#include "presentation/PageHeadContent.h"

#include <array>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace vellmark {

/// What the user has chosen to see of the history.
struct HistoryPageChoice {
    /// An agent that is not shown counts as the first that is.
    AgentProviderID agent;
    ChartRange range = ChartRange::month;
    /// Windows that the user has shown or hidden; the others are as the range has them.
    std::map<WindowKey, bool> shown;
    /// The time of the same length before, to compare with.
    bool comparesEarlier = false;
};

/// One line in the legend; pressing it shows or hides the line.
struct HistoryLegendItem {
    /// Empty for the time before.
    std::string windowID;
    std::string name;
    /// "29% left now" or "hidden".
    std::string value;
    ChartLine::Role role = ChartLine::Role::main;
    bool isShown = true;
    /// The last one that is shown cannot be hidden.
    bool canChange = true;
    std::string accessibilityText;
    bool operator==(const HistoryLegendItem&) const = default;
};

/// When a quota is used: seven days from the locale's first, each of 24 hours.
struct HeatMapContent {
    static constexpr int days = 7;
    static constexpr int hours = 24;
    /// 0 for nothing, else 1 to 5.
    static constexpr int levels = 6;

    AgentProviderID agent;
    std::string title;
    std::string less;
    std::string more;
    std::array<std::string, days> dayNames;
    /// Every sixth hour.
    std::map<int, std::string> hourNames;
    std::array<std::array<int, hours>, days> level{};
    /// What each says when it is read.
    std::array<std::array<std::string, hours>, days> words;
    std::string accessibilityText;
    bool operator==(const HeatMapContent&) const = default;
};

/// A number, its word, and what it means: "87%", "used", "at the peak, Nov 14".
struct HistoryFigure {
    std::string figure;
    std::string word;
    std::string caption;
    bool operator==(const HistoryFigure&) const = default;
};

struct HistoryPageContent {
    struct Agent {
        AgentProviderID id;
        std::string name;
        bool operator==(const Agent&) const = default;
    };

    PageHeadContent head;
    ControlContent exportButton;
    /// Why nothing was exported, or where to; empty without either.
    std::string exportNote;
    bool exportFailed = false;
    std::vector<Agent> agents;
    /// The index of the one that is shown.
    int agent = 0;
    std::string agentsTitle;
    /// In the order of `allChartRanges`.
    std::vector<std::string> ranges;
    int range = 0;
    std::string rangesTitle;
    std::vector<HistoryLegendItem> legend;
    std::string resetWord;
    ChartContent chart;
    /// In place of a chart without a course.
    std::string chartNote;
    HeatMapContent heat;
    std::string figuresTitle;
    std::vector<HistoryFigure> figures;
    /// What there is to say as long as there are few figures; may be empty.
    std::string figuresNote;
    /// Then nothing else is shown.
    std::optional<NoAgentsContent> noAgents;

    bool operator==(const HistoryPageContent&) const = default;
};

HistoryPageContent historyPageContent(const UsageState& state, const UsageHistory& history,
                                      const HistoryPageChoice& choice, Instant now,
                                      const Localization& words);

/// The windows that `choice` shows of its agent, the main one first.
std::vector<std::string> shownWindowIDs(const UsageState& state, const HistoryPageChoice& choice);
/// The agent that is shown for `choice`; absent without any.
std::optional<AgentProviderID> shownAgent(const UsageState& state, const HistoryPageChoice& choice);

/// What the page asks of the application. Main thread.
struct HistoryPageActions {
    std::function<void(const AgentProviderID&)> chooseAgent = [](const AgentProviderID&) {};
    std::function<void(ChartRange)> chooseRange = [](ChartRange) {};
    /// Shows or hides a window; empty means the time before.
    std::function<void(const std::string& windowID)> toggle = [](const std::string&) {};
    /// Asks where to, and writes what is shown; `picture` draws it as PNG when it is wanted.
    std::function<void(const std::function<std::string()>& picture)> save =
        [](const std::function<std::string()>&) {};
    /// The page is not shown any more.
    std::function<void()> leave = [] {};
};

} // namespace vellmark
