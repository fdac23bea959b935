#include "store/UsageHistory.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
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

// --- series

void HistorySeries::add(std::string_view provider, std::string_view windowID,
                        const HistoryPoint& point) {
    auto found = series_.find(std::pair(provider, windowID));
    if (found == series_.end()) {
        found = series_.emplace(Key(provider, windowID), std::vector<HistoryPoint>{}).first;
    }
    auto& points = found->second;
    if (points.empty() || points.back().capturedAt <= point.capturedAt) {
        points.push_back(point);
    } else {
        points.insert(
            std::ranges::upper_bound(points, point.capturedAt, {}, &HistoryPoint::capturedAt),
            point);
    }
    ++sampleCount_;
}

std::span<const HistoryPoint> HistorySeries::of(const WindowKey& key) const {
    const auto found =
        series_.find(std::pair(std::string_view(key.first.rawValue), std::string_view(key.second)));
    return found == series_.end() ? std::span<const HistoryPoint>{} : found->second;
}

std::vector<WindowKey> HistorySeries::keys() const {
    std::vector<WindowKey> keys;
    for (const auto& [key, points] : series_) {
        keys.emplace_back(AgentProviderID(key.first), key.second);
    }
    return keys;
}

std::size_t HistorySeries::bytesHeld() const {
    std::size_t bytes = 0;
    for (const auto& [key, points] : series_) {
        bytes += points.capacity() * sizeof(HistoryPoint) + sizeof(key) + key.first.capacity() +
                 key.second.capacity();
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

std::optional<HistoryPoint> UsageHistory::last(const WindowKey& key) const {
    const std::lock_guard hold(lock_);
    const auto points = series_.of(key);
    return points.empty() ? std::nullopt : std::optional(points.back());
}

std::vector<UsagePoint> UsageHistory::recent(const WindowKey& key, Instant since) const {
    const std::lock_guard hold(lock_);
    const auto points = series_.of(key);
    std::vector<UsagePoint> recent;
    std::transform(std::ranges::lower_bound(points, since, {}, &HistoryPoint::capturedAt),
                   points.end(), std::back_inserter(recent), usagePoint);
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
