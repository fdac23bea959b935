#pragma once

#include "store/UsageHistory.h"
#include "text/TimeZone.h"

#include <array>
#include <optional>
#include <span>

namespace vellmark {

/// What can be said of the use of one window in a span of time, in percent of the window.
///
/// Within a period only what exceeds its highest figure so far counts as used, so that roundings
/// and a clock that was set back count nothing twice. Of a period that ended unseen what was left
/// is unknown.
struct HistoryStatistics {
    struct Peak {
        double usedPercent = 0;
        Instant at{};
    };
    std::optional<Peak> peak;
    /// From the first sample in the span to its end.
    Seconds observed{0};
    double used = 0;
    /// How often it ran out.
    int timesUsedUp = 0;
    /// Periods in which something was used, and their highest figures together.
    int periodsInUse = 0;
    double usedInPeriods = 0;
    /// Periods whose end was seen, those of them that had something left, and what that was
    /// together.
    int endsSeen = 0;
    int endsWithRest = 0;
    double rest = 0;
    /// What was used in the hours of the week, Monday first; only what can be told to an hour.
    std::array<std::array<double, 24>, 7> usedByHour{};
    /// How often each hour of the week was in the observed time.
    std::array<std::array<double, 24>, 7> hoursObserved{};

    /// On average; absent before a whole day was observed.
    std::optional<double> usedADay() const;
    struct Hour {
        int hour = 0;
        /// Of everything that can be told to an hour, 0 to 1.
        double share = 0;
    };
    /// The hour of the day in which most is used; absent when nothing was.
    std::optional<Hour> busiestHour() const;
    /// What is used in an hour of the week on average.
    double usedAt(int weekday, int hour) const;
};

struct StatisticsSpan {
    Instant from{};
    Instant to{};
    /// Samples before it are thinned out to one an hour.
    Instant wholeSince{};
    TimeZone zone;
};

/// `points` are oldest first; the first may lie before the span. `latest` comes after them if it is
/// newer.
HistoryStatistics historyStatistics(std::span<const HistoryPoint> points,
                                    const std::optional<HistoryPoint>& latest,
                                    const StatisticsSpan& span);

} // namespace vellmark
