#pragma once

#include "store/UsageHistory.h"

#include <optional>
#include <span>
#include <vector>

namespace vellmark {

/// A place in a chart: 0 at its first instant, 1 at its last; and what is left, in percent.
struct ChartPoint {
    double x = 0;
    double y = 0;
    bool operator==(const ChartPoint&) const = default;
};

/// From `begin` to `end` on a chart's axis of time.
struct ChartStretch {
    double begin = 0;
    double end = 0;
    bool operator==(const ChartStretch&) const = default;
};

/// How a chart's axis of time lies, and what counts as a pause on it.
struct ChartScale {
    Instant from{};
    Instant to{};
    /// Nothing finer than a column is told apart.
    int columns = 1000;
    /// Samples before it are thinned out to one an hour.
    Instant wholeSince{};

    double x(Instant instant) const { return (instant - from) / (to - from); }
    Instant instant(double x) const { return from + (to - from) * x; }
    bool operator==(const ChartScale&) const = default;
    /// The longest that two samples are apart while an agent is being read; more where it would be
    /// too short to be seen.
    Seconds longestPause(Instant at) const;
};

/// What was left of a window over time.
struct ChartCurve {
    /// Between them nothing was read. A reset is a step up to 100.
    std::vector<std::vector<ChartPoint>> pieces;
    /// Within the chart.
    std::vector<double> resets;
    std::vector<ChartStretch> gaps;
};

/// `points` are oldest first; the first may lie before the chart. `latest` comes after them if it
/// is newer. At most four points a column are kept of a piece, so that the drawing is that of all
/// of them.
ChartCurve chartCurve(std::span<const HistoryPoint> points,
                      const std::optional<HistoryPoint>& latest, const ChartScale& scale);

/// What is left at `x`: between two points on the line between them, on a step its upper end.
/// Absent where there is no piece.
std::optional<double> valueAt(const std::vector<std::vector<ChartPoint>>& pieces, double x);

} // namespace vellmark
