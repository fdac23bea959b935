#include "store/UsageHistory.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <ranges>
#include <utility>

namespace vellmark {

namespace {

constexpr Seconds resetTolerance{60};
constexpr Seconds longestPause{30 * 60};

UsagePoint usagePoint(const HistoryPoint& point) {
    return {point.capturedAt, point.usedPercent};
}

} // namespace

HistoryPoint::HistoryPoint(Instant captured, double used, std::optional<Instant> resets)
    : capturedAt(captured), resetsAtSeconds(resets ? resets->time_since_epoch().count()
                                                   : std::numeric_limits<double>::quiet_NaN()),
      usedPercent(used) {}

std::optional<Instant> HistoryPoint::resetsAt() const {
    return std::isnan(resetsAtSeconds) ? std::nullopt
                                       : std::optional(Instant(Seconds(resetsAtSeconds)));
}

std::optional<Instant> resetBetween(const HistoryPoint& before, const HistoryPoint& after) {
    const auto due = before.resetsAt();
    const auto next = after.resetsAt();
    const bool moved = due && (!next || *next > *due + resetTolerance);
    if (moved && *due <= after.capturedAt) {
        return std::max(*due, before.capturedAt);
    }
    const bool dropped = after.usedPercent < before.usedPercent;
    if (dropped && (moved || !due)) {
        return after.capturedAt; // earlier than was announced, or without announcement
    }
    return std::nullopt;
}

// --- series

void HistorySeries::add(std::string_view provider, std::string_view windowID,
                        const HistoryPoint& point) {
    auto found = series_.find(std::pair(provider, windowID));
    if (found == series_.end()) {
        found = series_.emplace(Key(provider, windowID), Series{}).first;
    }
    auto& [points, ordered] = found->second;
    const bool isInOrder = ordered == points.size() &&
                           (points.empty() || points.back().capturedAt <= point.capturedAt);
    points.push_back(point);
    ordered += isInOrder;
    ++sampleCount_;
}

std::span<const HistoryPoint> HistorySeries::of(const WindowKey& key) {
    const auto found =
        series_.find(std::pair(std::string_view(key.first.rawValue), std::string_view(key.second)));
    if (found == series_.end()) {
        return {};
    }
    auto& [points, ordered] = found->second;
    if (ordered != points.size()) {
        const auto late = points.begin() + static_cast<std::ptrdiff_t>(ordered);
        std::ranges::stable_sort(late, points.end(), {}, &HistoryPoint::capturedAt);
        std::ranges::inplace_merge(points, late, {}, &HistoryPoint::capturedAt);
        ordered = points.size();
    }
    return points;
}

std::size_t HistorySeries::bytesHeld() const {
    std::size_t bytes = 0;
    for (const auto& [key, series] : series_) {
        bytes += series.points.capacity() * sizeof(HistoryPoint) + sizeof(key) +
                 key.first.capacity() + key.second.capacity();
    }
    return bytes;
}

// --- history

std::size_t UsageHistory::sampleCount() const {
    const std::lock_guard hold(lock_);
    return series_.sampleCount();
}

std::size_t UsageHistory::bytesHeld() const {
    const std::lock_guard hold(lock_);
    return series_.bytesHeld();
}

std::optional<HistoryPoint> UsageHistory::last(const WindowKey& key, Instant until) const {
    const std::lock_guard hold(lock_);
    const auto points = series_.of(key);
    const auto end = std::ranges::upper_bound(points, until, {}, &HistoryPoint::capturedAt);
    return end == points.begin() ? std::nullopt : std::optional(*std::prev(end));
}

bool UsageHistory::contains(const UsageHistorySample& sample) const {
    const std::lock_guard hold(lock_);
    const HistoryPoint wanted(sample.capturedAt, sample.usedPercent, sample.resetsAt);
    const auto same = std::ranges::equal_range(series_.of({sample.provider, sample.windowID}),
                                               sample.capturedAt, {}, &HistoryPoint::capturedAt);
    return std::ranges::any_of(same, [&](const HistoryPoint& point) {
        return point.usedPercent == wanted.usedPercent && point.resetsAt() == wanted.resetsAt();
    });
}

void UsageHistory::read(const WindowKey& key, Instant from, Instant to,
                        const std::function<void(std::span<const HistoryPoint>)>& reader) const {
    const std::lock_guard hold(lock_);
    const auto points = series_.of(key);
    auto begin = std::ranges::lower_bound(points, from, {}, &HistoryPoint::capturedAt);
    const auto end =
        std::ranges::upper_bound(begin, points.end(), to, {}, &HistoryPoint::capturedAt);
    if (begin != points.begin()) {
        --begin;
    }
    reader({begin, end});
}

std::vector<UsagePoint> UsageHistory::recent(const WindowKey& key, Instant since,
                                             Instant until) const {
    const std::lock_guard hold(lock_);
    const auto points = series_.of(key);
    const auto begin = std::ranges::lower_bound(points, since, {}, &HistoryPoint::capturedAt);
    const auto end =
        std::ranges::upper_bound(begin, points.end(), until, {}, &HistoryPoint::capturedAt);
    std::vector<UsagePoint> recent;
    std::transform(begin, end, std::back_inserter(recent), usagePoint);
    return recent;
}

void UsageHistory::add(const UsageHistorySample& sample) {
    const std::lock_guard hold(lock_);
    series_.add(sample.provider.rawValue, sample.windowID,
                HistoryPoint(sample.capturedAt, sample.usedPercent, sample.resetsAt));
}

void UsageHistory::replace(HistorySeries series) {
    const std::lock_guard hold(lock_);
    series_ = std::move(series);
}

bool isWorthRecording(const UsageWindow& window, Instant now,
                      const std::optional<HistoryPoint>& last) {
    if (!last || last->usedPercent != window.usedPercent) {
        return true;
    }
    const auto resetBefore = last->resetsAt();
    if (resetBefore.has_value() != window.resetsAt.has_value()) {
        return true;
    }
    if (resetBefore &&
        std::abs((*window.resetsAt - *resetBefore).count()) > resetTolerance.count()) {
        return true;
    }
    return now - last->capturedAt >= longestPause;
}

} // namespace vellmark
