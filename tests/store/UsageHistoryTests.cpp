#include "store/UsageHistory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
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
        UsageHistorySample sample;
        sample.provider = key.first;
        sample.windowID = key.second;
        sample.capturedAt = at(seconds);
        sample.usedPercent = used;
        if (resets) {
            sample.resetsAt = at(*resets);
        }
        history.add(sample);
    }
    UsageHistory history;
};

TEST_F(Course, ReductionKeepsPeaksAndEnds) {
    for (int index = 0; index < 10'000; ++index) {
        add(index, 50 + 10 * std::sin(index / 300.0));
    }
    add(4'321.5, 99.5); // late, and out of order
    add(7'000.5, 0.5);
    for (const std::size_t maximum : {4u, 10u, 101u, 1000u}) {
        const auto points = history.course(key, at(0), at(1e6), maximum).points;
        EXPECT_LE(points.size(), maximum);
        const auto [lowest, highest] = std::ranges::minmax(points, {}, &UsagePoint::usedPercent);
        EXPECT_EQ(highest.usedPercent, 99.5) << maximum;
        EXPECT_EQ(lowest.usedPercent, 0.5) << maximum;
        EXPECT_EQ(points.front().capturedAt, at(0));
        EXPECT_EQ(points.back().capturedAt, at(9'999));
        EXPECT_TRUE(std::ranges::is_sorted(points, {}, &UsagePoint::capturedAt));
    }
    EXPECT_EQ(history.course(key, at(100), at(109.5), 50).points.size(), 11u)
        << "with the one that the line comes from";
    EXPECT_TRUE(history.course(key, at(-10), at(-5), 50).points.empty());
    EXPECT_TRUE(history.course({key.first, "other"}, at(0), at(1e6), 50).points.empty());
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
    const auto resets = history.course(key, at(0), at(1e6), 100).resets;
    EXPECT_EQ(resets, (std::vector{at(100), at(300), at(2100)}));
    EXPECT_EQ(history.course(key, at(150), at(400), 100).resets, std::vector{at(300)});
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
    struct Case {
        const char* what;
        std::optional<HistoryPoint> last;
        bool expected;
    };
    const std::vector<Case> cases = {
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
    for (const Case& one : cases) {
        EXPECT_EQ(isWorthRecording(window, at(100), one.last), one.expected) << one.what;
    }
}

} // namespace
} // namespace vellmark::tests
