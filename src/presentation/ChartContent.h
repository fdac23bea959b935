#pragma once

#include "model/AgentUsageSnapshot.h"
#include "presentation/ChartCurve.h"
#include "presentation/ChartRange.h"
#include "store/UsageState.h"
#include "text/Localization.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vellmark {

/// From the lowest to the highest that was left on one day.
struct ChartDay {
    ChartStretch stretch;
    double lowest = 0;
    double highest = 0;
    bool operator==(const ChartDay&) const = default;
};

/// One course in a chart. Either pieces, or days where a line would go up and down too often.
struct ChartLine {
    enum class Role {
        main,    ///< drawn strongest, with an area below
        second,  ///< dotted
        further, ///< thin
        earlier, ///< of the time before the chart's, to compare with
    };
    Role role = Role::main;
    /// At the line's end, and in the read-out.
    std::string name;
    std::vector<std::vector<ChartPoint>> pieces;
    std::vector<ChartDay> days;
    bool operator==(const ChartLine&) const = default;
};

/// A time without good readings of the agent.
struct ChartSpan {
    enum class Kind {
        unread, ///< nobody read
        stale,  ///< the agent could not be read, others could
    };
    Kind kind = Kind::unread;
    ChartStretch stretch;
    std::string label;
    bool operator==(const ChartSpan&) const = default;
};

/// Where the line goes on at the present pace.
struct ChartForecast {
    ChartPoint from;
    ChartPoint to;
    /// The quota is empty at `to`; else it is the reset.
    bool isEmpty = false;
    /// Of the window; tells nothing where it lasts.
    UsageHealth health = UsageHealth::healthy;
    bool operator==(const ChartForecast&) const = default;
};

/// Words below the axis of time.
struct ChartTimeLabel {
    double x = 0;
    std::string text;
    bool isNow = false;
    bool operator==(const ChartTimeLabel&) const = default;
};

/// Words beside a height.
struct ChartHeightLabel {
    double y = 0;
    std::string text;
    bool operator==(const ChartHeightLabel&) const = default;
};

/// What a chart of one agent shows: what is left of its windows over time. Plain values in the
/// chart's own coordinates (see ChartPoint), whatever its size.
struct ChartContent {
    AgentProviderID agent;
    ChartScale scale;
    /// The one drawn strongest is the first.
    std::vector<ChartLine> lines;
    std::vector<double> resets;
    std::vector<ChartSpan> spans;
    /// From the last reset to the next, named.
    std::optional<std::pair<ChartPoint, ChartPoint>> evenPace;
    std::string evenPaceName;
    std::optional<ChartForecast> forecast;
    /// The latest value of the first line.
    std::optional<ChartPoint> latest;
    /// Where the chart's past ends.
    double nowX = 1;
    std::vector<ChartTimeLabel> timeLabels;
    std::vector<ChartHeightLabel> heightLabels;
    /// What the chart is, for who cannot see it.
    std::string accessibilityText;
    /// For the read-out.
    Localization words{"en"};

    /// Something was read within the chart.
    bool hasCourse() const {
        return std::ranges::any_of(lines, [](const ChartLine& line) {
            return !line.pieces.empty() || !line.days.empty();
        });
    }

    bool operator==(const ChartContent&) const = default;
};

/// What a chart is asked to show.
struct ChartRequest {
    AgentProviderID agent;
    /// Windows of the agent's snapshot; the main one first.
    std::vector<std::string> windowIDs;
    ChartRange range = ChartRange::week;
    /// With room for what comes: the next reset, the even pace to it and the forecast. One window
    /// only.
    bool looksAhead = false;
    bool comparesEarlier = false;
};

/// How the line of that number is drawn.
ChartLine::Role chartRole(std::size_t index);

/// Reads the history once for each window. Without a snapshot of the agent, empty.
ChartContent chartContent(const UsageState& state, const UsageHistory& history,
                          const ChartRequest& request, Instant now, const Localization& words);

} // namespace vellmark
