#include "presentation/HistoryStatistics.h"

#include "model/UsageRules.h"
#include "presentation/CalendarHours.h"
#include "presentation/ReadingPause.h"

#include <algorithm>

namespace vellmark {

namespace {

/// What is shown as 0 %.
constexpr double nothing = 0.05;

class Counter {
public:
    explicit Counter(const StatisticsSpan& span) : span_(span), hours_(span.zone) {}

    void take(const HistoryPoint& point) {
        if (!before_) {
            begin(point);
        } else {
            goOn(*before_, point);
        }
        before_ = point;
        if (point.capturedAt >= span_.from &&
            (!result_.peak || point.usedPercent > result_.peak->usedPercent)) {
            result_.peak = {point.usedPercent, point.capturedAt};
        }
    }

    HistoryStatistics finished() {
        if (before_) {
            endPeriod();
            observe();
        }
        return result_;
    }

private:
    void begin(const HistoryPoint& point) {
        observedFrom_ = std::max(point.capturedAt, span_.from);
        highest_ = point.usedPercent;
    }

    bool isSeen(Instant from, Instant to) const {
        return to - from <= longestReadingPause(to, span_.wholeSince);
    }

    void goOn(const HistoryPoint& before, const HistoryPoint& point) {
        std::optional<Instant> reset;
        if (before.resetsAtSeconds != point.resetsAtSeconds) {
            reset = resetBetween(before, point);
        }
        if (!reset) {
            const double more = std::max(point.usedPercent - highest_, 0.0);
            highest_ = std::max(highest_, point.usedPercent);
            count(more, before.capturedAt, point.capturedAt);
            return;
        }
        if (*reset >= span_.from && isSeen(before.capturedAt, *reset)) {
            const double rest = std::max(fullPercent - highest_, 0.0);
            ++result_.endsSeen;
            result_.endsWithRest += rest >= nothing;
            result_.rest += rest;
        }
        endPeriod();
        highest_ = std::max(point.usedPercent, 0.0);
        count(highest_, *reset, point.capturedAt);
    }

    /// Of what happened partly before the span only the part within counts.
    void count(double used, Instant begin, Instant end) {
        if (used <= 0 || end < span_.from) {
            return;
        }
        if (begin < span_.from) {
            used *= (end - span_.from) / (end - begin);
            begin = span_.from;
        }
        result_.used += used;
        isPeriodInUse_ = true;
        if (isSeen(begin, end)) {
            spread(used, begin, end);
        }
    }

    /// Evenly over the hours between.
    void spread(double used, Instant begin, Instant end) {
        if (begin >= end) {
            const CalendarHour& hour = hours_.at(end);
            cell(result_.usedByHour, hour) += used;
            return;
        }
        for (Instant at = begin; at < end;) {
            const CalendarHour hour = hours_.at(at);
            const Instant until = std::min(hour.end, end);
            cell(result_.usedByHour, hour) += used * ((until - at) / (end - begin));
            at = until;
        }
    }

    static double& cell(std::array<std::array<double, 24>, 7>& cells, const CalendarHour& hour) {
        return cells[static_cast<std::size_t>(hour.weekday)][static_cast<std::size_t>(hour.hour)];
    }

    void endPeriod() {
        if (isPeriodInUse_) {
            ++result_.periodsInUse;
            result_.usedInPeriods += std::min(highest_, fullPercent);
            result_.timesUsedUp += fullPercent - highest_ < nothing;
        }
        isPeriodInUse_ = false;
    }

    void observe() {
        result_.observed = std::max(span_.to - observedFrom_, Seconds(0));
        for (Instant at = observedFrom_; at < span_.to;) {
            const CalendarHour hour = hours_.at(at);
            const Instant until = std::min(hour.end, span_.to);
            cell(result_.hoursObserved, hour) += (until - at) / oneHour;
            at = until;
        }
    }

    const StatisticsSpan& span_;
    CalendarHours hours_;
    HistoryStatistics result_;
    std::optional<HistoryPoint> before_;
    Instant observedFrom_{};
    double highest_ = 0; ///< of the present period
    bool isPeriodInUse_ = false;
};

} // namespace

std::optional<double> HistoryStatistics::usedADay() const {
    return observed >= oneDay ? std::optional(used * (oneDay / observed)) : std::nullopt;
}

std::optional<HistoryStatistics::Hour> HistoryStatistics::busiestHour() const {
    std::array<double, 24> sums{};
    double all = 0;
    for (const auto& hours : usedByHour) {
        for (std::size_t hour = 0; hour < hours.size(); ++hour) {
            sums[hour] += hours[hour];
            all += hours[hour];
        }
    }
    if (!(all > 0)) {
        return std::nullopt;
    }
    const auto most = std::ranges::max_element(sums);
    return Hour{static_cast<int>(most - sums.begin()), *most / all};
}

double HistoryStatistics::usedAt(int weekday, int hour) const {
    const auto row = static_cast<std::size_t>(weekday);
    const auto column = static_cast<std::size_t>(hour);
    // An hour of which little was observed yet is no average.
    return usedByHour[row][column] / std::max(hoursObserved[row][column], 1.0);
}

HistoryStatistics historyStatistics(std::span<const HistoryPoint> points,
                                    const std::optional<HistoryPoint>& latest,
                                    const StatisticsSpan& span) {
    Counter counter(span);
    for (const HistoryPoint& point : points) {
        counter.take(point);
    }
    if (latest && latest->capturedAt <= span.to &&
        (points.empty() || points.back().capturedAt < latest->capturedAt)) {
        counter.take(*latest);
    }
    return counter.finished();
}

} // namespace vellmark
