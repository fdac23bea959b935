#include "store/UsageHistory.h"
#include "support/HistoryDocument.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace vellmark::tests {
namespace {

const WindowKey key(AgentProviderID::claude(), "session");

Instant at(double seconds) {
    return Instant(Seconds(seconds));
}

class Course : public testing::Test {
protected:
    void add(double seconds, double used, std::optional<double> resets = std::nullopt) {
        auto sample = historySample(key.first, key.second, at(seconds), used);
        if (resets) {
            sample.resetsAt = at(*resets);
        }
        history.add(sample);
    }
    UsageHistory history;
};

TEST_F(Course, ReadsARangeAndTheSampleBefore) {
    for (int index = 0; index < 1'000; ++index) {
        add(index, index % 100);
    }
    add(500.5, 99.5); // late, and out of order
    const auto timesOf = [&](const WindowKey& of, double from, double to) {
        std::vector<double> times;
        history.read(of, at(from), at(to), [&](std::span<const HistoryPoint> points) {
            for (const HistoryPoint& point : points) {
                times.push_back(point.capturedAt.time_since_epoch().count());
            }
        });
        return times;
    };
    EXPECT_EQ(timesOf(key, 500.2, 502), (std::vector<double>{500, 500.5, 501, 502}));
    EXPECT_EQ(timesOf(key, 5'000, 6'000), std::vector<double>{999});
    EXPECT_TRUE(timesOf(key, -10, -5).empty());
    EXPECT_TRUE(timesOf({key.first, "other"}, 0, 1e6).empty());
}

TEST_F(Course, TellsWhereTheWindowWasReset) {
    add(0, 10, 100);
    add(50, 30, 100);
    add(99, 80, 100);
    add(120, 5, 1000); // reset when it was due
    add(140, 5, 1030); // moved by half a minute: the same window
    add(200, 50, 1000);
    add(300, 2, 2000);  // reset early
    add(2100, 2, 2000); // due, not confirmed
    add(2200, 0, 3000); // and now it is
    std::vector<Instant> resets;
    history.read(key, at(0), at(1e6), [&](std::span<const HistoryPoint> points) {
        for (std::size_t index = 1; index < points.size(); ++index) {
            if (const auto reset = resetBetween(points[index - 1], points[index])) {
                resets.push_back(*reset);
            }
        }
    });
    EXPECT_EQ(resets, (std::vector{at(100), at(300), at(2100)}));
}

TEST(HistorySeries, TakesAnyNumberOfSamplesInAnyOrder) {
    constexpr int count = 200'000;
    for (const int step : {-1, 7, 3}) { // backwards; several interleaved courses
        HistorySeries series;
        for (int index = 0; index < count; ++index) {
            const int place =
                step < 0 ? count - index : index % step * (count / step) + index / step;
            series.add("claude", "session", HistoryPoint(at(place), place % 100, std::nullopt));
        }
        EXPECT_EQ(series.of(key).size(), static_cast<std::size_t>(count));
        EXPECT_TRUE(std::ranges::is_sorted(series.of(key), {}, &HistoryPoint::capturedAt)) << step;
    }
}

TEST(Recording, AsksForAChangeOrHalfAnHour) {
    const UsageWindow window{"session", 40, 300, at(10'000)};
    const std::tuple<const char*, std::optional<HistoryPoint>, bool> cases[] = {
        {"the first", std::nullopt, true},
        {"the same", HistoryPoint(at(100), 40, at(10'000)), false},
        {"used changed", HistoryPoint(at(100), 40.5, at(10'000)), true},
        {"reset moved by a minute", HistoryPoint(at(100), 40, at(9'940)), false},
        {"reset moved by more", HistoryPoint(at(100), 40, at(9'939)), true},
        {"reset moved back", HistoryPoint(at(100), 40, at(10'061)), true},
        {"reset appeared", HistoryPoint(at(100), 40, std::nullopt), true},
        {"half an hour passed", HistoryPoint(at(-1'700), 40, at(10'000)), true},
        {"not quite", HistoryPoint(at(-1'699), 40, at(10'000)), false},
        {"the clock was set back", HistoryPoint(at(1e6), 40, at(10'000)), false},
    };
    for (const auto& [what, last, expected] : cases) {
        EXPECT_EQ(isWorthRecording(window, at(100), last), expected) << what;
    }
}

} // namespace
} // namespace vellmark::tests
