#include "presentation/ChartCurve.h"

#include "model/UsageRules.h"
#include "presentation/ReadingPause.h"

#include <algorithm>
#include <cmath>

namespace vellmark {

namespace {

/// A pause shorter than this share of the chart is none.
constexpr double leastShare = 1.0 / 60;

double left(const HistoryPoint& point) {
    return std::clamp(fullPercent - point.usedPercent, 0.0, fullPercent);
}

/// Collects the points of a curve; of each column the first, the lowest, the highest and the last.
class Reducer {
public:
    Reducer(ChartCurve& curve, int columns) : curve_(curve), columns_(columns) {}
    ~Reducer() { endPiece(); }
    Reducer(const Reducer&) = delete;
    Reducer& operator=(const Reducer&) = delete;

    void add(ChartPoint point) {
        const double column = std::floor(point.x * columns_);
        if (count_ > 0 && column != column_) {
            flush();
        }
        column_ = column;
        if (count_ == 0) {
            first_ = lowest_ = highest_ = {point, 0};
        }
        last_ = {point, count_++};
        if (point.y < lowest_.point.y) {
            lowest_ = last_;
        }
        if (point.y > highest_.point.y) {
            highest_ = last_;
        }
    }

    void endPiece() {
        flush();
        if (!piece_.empty()) {
            curve_.pieces.push_back(std::move(piece_));
        }
        piece_.clear();
    }

private:
    struct Numbered {
        ChartPoint point;
        int number = 0;
    };

    void flush() {
        if (count_ == 0) {
            return;
        }
        const auto [earlier, later] =
            std::minmax(lowest_, highest_, [](const Numbered& one, const Numbered& other) {
                return one.number < other.number;
            });
        int previous = -1;
        for (const Numbered& kept : {first_, earlier, later, last_}) {
            if (kept.number > previous) {
                piece_.push_back(kept.point);
                previous = kept.number;
            }
        }
        count_ = 0;
    }

    ChartCurve& curve_;
    double columns_;
    std::vector<ChartPoint> piece_;
    double column_ = 0;
    int count_ = 0;
    Numbered first_;
    Numbered lowest_;
    Numbered highest_;
    Numbered last_;
};

} // namespace

Seconds ChartScale::longestPause(Instant at) const {
    return std::max(longestReadingPause(at, wholeSince), (to - from) * leastShare);
}

ChartCurve chartCurve(std::span<const HistoryPoint> points,
                      const std::optional<HistoryPoint>& latest, const ChartScale& scale) {
    ChartCurve curve;
    Reducer reducer(curve, scale.columns);
    const HistoryPoint* before = nullptr;
    const auto take = [&](const HistoryPoint& point) {
        const double x = scale.x(point.capturedAt);
        std::optional<Instant> reset;
        // The same announcement is by far the most frequent case.
        if (before && before->resetsAtSeconds != point.resetsAtSeconds) {
            reset = resetBetween(*before, point);
        }
        if (reset && *reset >= scale.from && *reset <= scale.to) {
            curve.resets.push_back(scale.x(*reset));
        }
        if (before &&
            point.capturedAt - before->capturedAt > scale.longestPause(point.capturedAt)) {
            reducer.endPiece();
            curve.gaps.push_back({std::max(scale.x(before->capturedAt), 0.0), std::min(x, 1.0)});
        } else if (reset) {
            reducer.add({scale.x(*reset), left(*before)});
            if (*reset < point.capturedAt) {
                reducer.add({scale.x(*reset), fullPercent});
            }
        }
        reducer.add({x, left(point)});
        before = &point;
    };
    std::ranges::for_each(points, take);
    if (latest && (points.empty() || points.back().capturedAt < latest->capturedAt)) {
        take(*latest);
    }
    reducer.endPiece();
    return curve;
}

std::optional<double> valueAt(const std::vector<std::vector<ChartPoint>>& pieces, double x) {
    const auto piece = std::ranges::upper_bound(
        pieces, x, {}, [](const auto& candidate) { return candidate.front().x; });
    if (piece == pieces.begin()) {
        return std::nullopt;
    }
    const std::vector<ChartPoint>& points = *std::prev(piece);
    const auto next = std::ranges::upper_bound(points, x, {}, &ChartPoint::x);
    const ChartPoint& before = *std::prev(next);
    if (next == points.end()) {
        return before.x == x ? std::optional(before.y) : std::nullopt;
    }
    return before.y + (next->y - before.y) * (x - before.x) / (next->x - before.x);
}

} // namespace vellmark
