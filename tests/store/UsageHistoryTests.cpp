#include "store/UsageHistory.h"

#include <gtest/gtest.h>

#include <optional>
#include <vector>

namespace vellmark::tests {
namespace {

const WindowKey key(AgentProviderID::claude(), "session");

Instant at(double seconds) {
    return Instant(Seconds(seconds));
}

void add(UsageHistory& history, double seconds, double used) {
    UsageHistorySample sample;
    sample.provider = key.first;
    sample.windowID = key.second;
    sample.capturedAt = at(seconds);
    sample.usedPercent = used;
    history.add(sample);
}

TEST(UsageHistory, isInTheOrderOfTimeAlsoWhenASampleComesLate) {
    UsageHistory history;
    for (const double seconds : {0, 10, 20, 15, 20, 5}) {
        add(history, seconds, seconds);
    }
    const std::vector<UsagePoint> expected = {
        {at(10), 10}, {at(15), 15}, {at(20), 20}, {at(20), 20}};
    EXPECT_EQ(history.recent(key, at(6)), expected);
    EXPECT_EQ(history.last(key)->usedPercent, 20);
    EXPECT_TRUE(history.recent(key, at(21)).empty());
    EXPECT_TRUE(history.recent({key.first, "other"}, at(0)).empty());
    EXPECT_FALSE(history.last({key.first, "other"}));
}

TEST(Recording, asksForAChangeOrHalfAnHour) {
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
