#include "store/PlausibleFigures.h"

#include <gtest/gtest.h>

#include <limits>

namespace vellmark::tests {
namespace {

using Kind = ImplausibleFigure::Kind;

TEST(PlausibleFigures, LeaveAReadingWithoutWhatCannotBeTrue) {
    const Instant now = instantFromUnixSeconds(1'770'000'000);
    AgentUsageSnapshot reading;
    const auto add = [&](std::string id, double used, std::optional<double> minutes,
                         std::optional<Instant> reset) {
        reading.windows.push_back({.id = std::move(id),
                                   .usedPercent = used,
                                   .windowDurationMinutes = minutes,
                                   .resetsAt = reset});
    };
    add("session", 42, 300, now + Seconds(3600));
    add("overdrawn", 130, 10080, now - Seconds(60));
    add("rounded", -0.4, {}, {});
    EXPECT_TRUE(removeImplausibleFigures(reading, now).empty());
    EXPECT_EQ(reading.windows.size(), 3U);
    EXPECT_FALSE(reading.isIncomplete);

    add("far", 5, 300, instantFromUnixSeconds(1e292));
    add("long", 5, 1e300, now);
    add("backwards", 5, -300, now);
    EXPECT_EQ(removeImplausibleFigures(reading, now).size(), 3U);
    EXPECT_FALSE(reading.isIncomplete);
    EXPECT_FALSE(reading.windows.at(3).resetsAt);
    EXPECT_FALSE(reading.windows.at(4).windowDurationMinutes);
    EXPECT_FALSE(reading.windows.at(5).windowDurationMinutes);

    add("negative", -5, 300, now);
    add("nonsense", 1e300, 300, now);
    add("no number", std::numeric_limits<double>::quiet_NaN(), 300, now);
    const auto found = removeImplausibleFigures(reading, now);
    ASSERT_EQ(found.size(), 3U);
    EXPECT_EQ(found.front().kind, Kind::used);
    EXPECT_EQ(found.front().window.id, "negative");
    EXPECT_EQ(reading.windows.size(), 6U);
    EXPECT_TRUE(reading.isIncomplete) << "earlier figures of these windows are to be kept";
}

} // namespace
} // namespace vellmark::tests
