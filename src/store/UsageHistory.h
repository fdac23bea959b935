#pragma once

#include "model/UsageHistorySample.h"
#include "model/UsageWindow.h"
#include "store/UsageState.h"

#include <cstddef>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace vellmark {

/// A recorded point of one window.
struct HistoryPoint {
    Instant capturedAt{};
    /// Not a number where the window had no reset time; see `resetsAt()`.
    double resetsAtSeconds = 0;
    double usedPercent = 0;

    HistoryPoint(Instant captured, double used, std::optional<Instant> resets);
    std::optional<Instant> resetsAt() const;
};

/// The instant between two samples of a window that follow each other at which it was reset.
std::optional<Instant> resetBetween(const HistoryPoint& before, const HistoryPoint& after);

/// The samples of all windows in memory, 24 bytes each. A plain value.
class HistorySeries {
public:
    /// Older samples may come late.
    void add(std::string_view provider, std::string_view windowID, const HistoryPoint& point);
    /// Oldest first; empty for an unknown key. Puts what came late into its place.
    std::span<const HistoryPoint> of(const WindowKey& key);
    std::size_t sampleCount() const { return sampleCount_; }
    std::size_t bytesHeld() const;

private:
    using Key = std::pair<std::string, std::string>;
    struct Less {
        using is_transparent = void;
        bool operator()(const auto& left, const auto& right) const {
            const int order = std::string_view(left.first).compare(std::string_view(right.first));
            return order != 0 ? order < 0
                              : std::string_view(left.second) < std::string_view(right.second);
        }
    };
    /// The first `ordered` points are in the order of time, the others as they came.
    struct Series {
        std::vector<HistoryPoint> points;
        std::size_t ordered = 0;
    };
    std::map<Key, Series, Less> series_;
    std::size_t sampleCount_ = 0;
};

/// The recorded history as the program asks for it. Every operation may be called from any thread.
class UsageHistory {
public:
    std::size_t sampleCount() const;
    std::size_t bytesHeld() const;

    /// The newest sample of a window up to `until`, for deciding whether to record the next. One
    /// from a time when the clock was ahead does not count.
    std::optional<HistoryPoint> last(const WindowKey& key, Instant until) const;
    /// Whether this very sample is there.
    bool contains(const UsageHistorySample& sample) const;

    /// Shows the samples from `from` to `to` and the one before, which says where the line comes
    /// from, oldest first. Nothing can be added until `reader` returns, and it asks nothing here.
    void read(const WindowKey& key, Instant from, Instant to,
              const std::function<void(std::span<const HistoryPoint>)>& reader) const;

    /// The samples from `since` to `until`, for a forecast.
    std::vector<UsagePoint> recent(const WindowKey& key, Instant since, Instant until) const;

    void add(const UsageHistorySample& sample);
    void replace(HistorySeries series);

private:
    mutable std::mutex lock_;
    mutable HistorySeries series_; ///< under `lock_`; orders itself when it is asked
};

/// Whether a reading is worth a sample: the figures differ from the last sample's (the reset time
/// by more than a minute), or half an hour has passed.
bool isWorthRecording(const UsageWindow& window, Instant now,
                      const std::optional<HistoryPoint>& last);

} // namespace vellmark
