#include "store/PlausibleFigures.h"

#include <gtest/gtest.h>

#include <limits>

namespace vellmark::tests {
namespace {

using Kind = ImplausibleFigure::Kind;

TEST(PlausibleFigures, LeaveAReadingWithoutWhatCannotBeTrue) {
    const Instant now = instantFromUnixSeconds(1'770'000'000);
    AgentUsageSnapshot reading;
    reading.windows = {{"session", 42, 300, now + Seconds(3600)},
                       {"overdrawn", 130, 10080, now - Seconds(60)},
                       {"rounded", -0.4, {}, {}}};
    EXPECT_TRUE(removeImplausibleFigures(reading, now).empty());
    EXPECT_EQ(reading.windows.size(), 3U);

    reading.windows = {{"far", 5, 300, instantFromUnixSeconds(1e292)},
                       {"long", 5, 1e300, now},
                       {"backwards", 5, -300, now}};
    EXPECT_EQ(removeImplausibleFigures(reading, now).size(), 3U);
    EXPECT_FALSE(reading.isIncomplete);
    EXPECT_EQ(reading.windows,
              (std::vector<UsageWindow>{
                  {"far", 5, 300, {}}, {"long", 5, {}, now}, {"backwards", 5, {}, now}}));

    reading.windows = {{"negative", -5, 300, now},
                       {"nonsense", 1e300, 300, now},
                       {"session", 42, 300, now},
                       {"no number", std::numeric_limits<double>::quiet_NaN(), 300, now}};
    const auto found = removeImplausibleFigures(reading, now);
    ASSERT_EQ(found.size(), 3U);
    EXPECT_EQ(found.front().kind, Kind::used);
    EXPECT_EQ(found.front().window.id, "negative");
    EXPECT_EQ(reading.windows.size(), 1U);
    EXPECT_TRUE(reading.isIncomplete) << "earlier figures of these windows are to be kept";
}

} // namespace
} // namespace vellmark::tests
