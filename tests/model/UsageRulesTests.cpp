#include "model/UsageRules.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <utility>
#include <vector>

namespace vellmark {

namespace {

const Instant now(Seconds(800000000));
constexpr double periodMinutes = 1000;

/// A window with so much left of its quota and (in percent) of its time.
UsageWindow window(double remaining, std::optional<double> timeRemaining) {
    UsageWindow result{"w", 100 - remaining, periodMinutes, {}};
    if (timeRemaining) {
        result.resetsAt = now + Seconds(*timeRemaining / 100 * periodMinutes * 60);
    }
    return result;
}

double hoursUntilEmpty(const UsageWindow& window, std::vector<UsagePoint> recent = {}) {
    const auto outlook = forecast(window, now, recent);
    return outlook && outlook->emptyAt ? (*outlook->emptyAt - now).count() / 3600 : -1;
}

} // namespace

TEST(UsageRules, AWiderWindowCoversTheNarrowerOnesOfItsQuota) {
    const auto of = [](const char* id, std::optional<double> minutes) {
        return UsageWindow{id, 50, minutes, {}};
    };
    const auto session = of("session", 300);
    const auto week = of("weekly", 10080);
    const auto model = of("fable-weekly", 10080);
    const auto poolHours = of("pool:A|5h", 300);
    const auto poolWeek = of("pool:A|weekly", 10080);
    const auto limit = of("limit:spark|primary", 300);
    EXPECT_TRUE(covers(week, session) && covers(week, model) && covers(poolWeek, poolHours));
    EXPECT_FALSE(covers(session, week) || covers(model, week) || covers(model, session));
    EXPECT_FALSE(covers(week, week) || covers(session, model));
    EXPECT_FALSE(covers(poolWeek, session) || covers(week, poolHours) || covers(week, limit));
    EXPECT_FALSE(covers(of("pool:B|weekly", 10080), poolHours));
    EXPECT_FALSE(covers(week, of("session", {})) || covers(of("weekly", {}), session));
}

TEST(UsageRules, SeverityHasSharpEdges) {
    using enum Severity;
    const std::tuple<double, std::optional<double>, Severity> cases[] = {
        {100, 1000, fine},     {120, {}, fine},      {5, 0, critical},     {5, -10, critical},
        {-3, {}, critical},    {5.01, {}, critical}, {14.9, {}, critical}, {15, {}, attention},
        {29.9, {}, attention}, {30, {}, fine},       {85, 100, critical},  {85.1, 100, attention},
        {95, 150, attention},  {95.1, 150, fine},    {5.1, -0.001, fine},  {35, 50, critical},
        {35.1, 50, attention}, {45, 50, attention},  {45.1, 50, fine},     {6, 0, fine},
    };
    for (const auto& [remaining, timeRemaining, expected] : cases) {
        EXPECT_EQ(severity(window(remaining, timeRemaining), now), expected)
            << remaining << " " << timeRemaining.value_or(NAN);
    }
}

TEST(UsageRules, AWindowWithoutUsableLengthHasNoTime) {
    UsageWindow broken = window(50, 50);
    for (const double minutes : {0.0, -5.0, std::nan(""), 1e-320}) {
        broken.windowDurationMinutes = minutes;
        EXPECT_FALSE(timeRemainingPercent(broken, now)) << minutes;
        EXPECT_FALSE(elapsedPercent(broken, now));
        EXPECT_FALSE(planning(broken, now));
        EXPECT_FALSE(forecast(broken, now));
        EXPECT_EQ(severity(broken, now), Severity::fine);
    }
}

TEST(UsageRules, AnAgentIsAsWellAsItsWorstWindow) {
    AgentUsageSnapshot snapshot;
    EXPECT_EQ(health(snapshot, now), UsageHealth::unavailable);
    snapshot.windows = {window(90, 50), window(45, 50)};
    EXPECT_EQ(health(snapshot, now), UsageHealth::attention);
    snapshot.windows = {window(90, 50), window(3, 50), window(45, 50)};
    EXPECT_EQ(health(snapshot, now), UsageHealth::critical);

    using enum UsageHealth;
    EXPECT_EQ(worse(healthy, unavailable), unavailable);
    EXPECT_EQ(worse(attention, unavailable), attention);
    EXPECT_EQ(worse(attention, critical), critical);
    EXPECT_EQ(worse(healthy, healthy), healthy);
}

TEST(UsageRules, AnAgentThatRefusesIsCritical) {
    AgentUsageSnapshot snapshot;
    snapshot.windows = {window(90, 50)};
    const std::pair<UsageAllowance, bool> cases[] = {
        {{}, false},
        {{.ordinaryUsageAllowed = true, .bankedResets = 2}, false},
        {{.ordinaryUsageAllowed = false}, true},
        {{.reachedType = "rate_limit_reached"}, true},
    };
    for (const auto& [allowance, refuses] : cases) {
        snapshot.allowance = allowance;
        EXPECT_EQ(isUsedUp(snapshot), refuses);
        EXPECT_EQ(health(snapshot, now), refuses ? UsageHealth::critical : UsageHealth::healthy);
    }
    snapshot.windows.clear();
    EXPECT_EQ(health(snapshot, now), UsageHealth::unavailable);
}

TEST(UsageRules, AnAgentIsBackOnceAllThatIsUsedUpHasReset) {
    const auto named = [](std::string id, double remaining, std::optional<double> timeRemaining) {
        UsageWindow result = window(remaining, timeRemaining);
        result.id = std::move(id);
        return result;
    };
    const auto until = [](std::vector<UsageWindow> windows) {
        AgentUsageSnapshot snapshot;
        snapshot.windows = std::move(windows);
        return usedUpUntil(snapshot, now);
    };
    const auto soon = named("session", 0, 10);
    const auto later = named("weekly", -3, 60);
    EXPECT_EQ(until({soon, later}), later.resetsAt);
    EXPECT_EQ(until({later, soon}), later.resetsAt);
    EXPECT_EQ(until({soon, named("weekly", 1, 60)}), soon.resetsAt);
    EXPECT_EQ(until({soon, named("individual", 0, 90), named("limit:a|primary", 0, 90)}),
              soon.resetsAt);
    EXPECT_EQ(until({soon, named("weekly", 0, {})}), std::nullopt);
    EXPECT_EQ(until({soon, named("weekly", 0, -1)}), std::nullopt);
    EXPECT_EQ(until({named("session", 1, 10)}), std::nullopt);
}

TEST(UsageRules, PlanningAllowsFivePoints) {
    using enum Planning::Kind;
    const std::tuple<double, double, Planning> cases[] = {
        {55, 50, {onPlan, 5}},    {55.5, 50, {reserve, 5.5}}, {45, 50, {onPlan, -5}},
        {40, 50, {deficit, -10}}, {90, 150, {deficit, -10}},  {-20, 30, {deficit, -30}},
    };
    for (const auto& [remaining, timeRemaining, expected] : cases) {
        const auto plan = planning(window(remaining, timeRemaining), now);
        ASSERT_TRUE(plan);
        EXPECT_EQ(plan->kind, expected.kind) << remaining;
        EXPECT_NEAR(plan->points, expected.points, 1e-6);
    }
    EXPECT_FALSE(planning(window(50, {}), now));
    EXPECT_FALSE(planning(window(50, -1), now));
}

TEST(UsageRules, PaceNeedsGrounds) {
    EXPECT_NEAR(pace(window(60, 50), now).value(), 80, 1e-6);
    EXPECT_TRUE(pace(window(90, 95), now));
    EXPECT_FALSE(pace(window(90, 95.1), now));
    EXPECT_FALSE(pace(window(100, 50), now));
    EXPECT_FALSE(pace(window(50, {}), now));
    EXPECT_NEAR(pace(window(60, -10), now).value(), 40, 1e-6);
}

TEST(UsageRules, ForecastGoesByTheWholeWindow) {
    // 60 % in 500 minutes: the other 40 % last 333 minutes of the 500 that are left.
    EXPECT_NEAR(hoursUntilEmpty(window(40, 50)), 5.5556, 0.001);
    EXPECT_EQ(forecast(window(50, 50), now), Forecast{});
    EXPECT_EQ(forecast(window(60, 50), now), Forecast{});
    EXPECT_EQ(hoursUntilEmpty(window(0, 50)), 0);
    EXPECT_EQ(hoursUntilEmpty(window(-4, 50)), 0);
    EXPECT_FALSE(forecast(window(100, 50), now));
    EXPECT_FALSE(forecast(window(40, 96), now));
    EXPECT_FALSE(forecast(window(40, -1), now));
    EXPECT_FALSE(forecast(window(40, {}), now));
}

TEST(UsageRules, ForecastFollowsASteeperRecentPace) {
    const auto minutesAgo = [](double minutes, double used) {
        return UsagePoint{now - Seconds(minutes * 60), used};
    };
    const UsageWindow half = window(60, 50);
    // 20 % in the last hour: the remaining 60 % last three more.
    EXPECT_NEAR(hoursUntilEmpty(half, {minutesAgo(60, 20), minutesAgo(5, 39)}), 3, 0.001);
    // A slower recent pace, and one that a pause ended, do not count.
    EXPECT_EQ(hoursUntilEmpty(half, {minutesAgo(110, 39)}), -1);
    // Too short a time, too long ago, in the future.
    EXPECT_EQ(hoursUntilEmpty(half, {minutesAgo(9, 20)}), -1);
    EXPECT_EQ(hoursUntilEmpty(half, {minutesAgo(125, 0)}), -1);
    EXPECT_EQ(hoursUntilEmpty(half, {minutesAgo(-5, 0)}), -1);
    // Only what came after a reset counts.
    EXPECT_NEAR(hoursUntilEmpty(half, {minutesAgo(100, 90), minutesAgo(60, 20)}), 3, 0.001);
    EXPECT_EQ(hoursUntilEmpty(half, {minutesAgo(60, 0), minutesAgo(20, 90)}), -1);
    // Rounding by the agent is no reset.
    EXPECT_NEAR(hoursUntilEmpty(half, {minutesAgo(60, 20), minutesAgo(30, 19.5)}), 3, 0.001);
    // Points of the period before count as little, even when they look like a rise.
    UsageWindow young{"w", 30, 60.0, now + Seconds(1800)};
    EXPECT_EQ(hoursUntilEmpty(young, {minutesAgo(40, 1)}), -1);
    EXPECT_NEAR(hoursUntilEmpty(young, {minutesAgo(12, 0)}), 28 / 60.0, 0.001);
}

TEST(UsageRules, NoNumberIsTooStrange) {
    const double infinity = std::numeric_limits<double>::infinity();
    const std::vector numbers{0.0, -infinity, infinity, std::nan(""), 1e308, -1e308, 1e-320};
    for (const double used : numbers) {
        for (const double minutes : numbers) {
            for (const double reset : numbers) {
                const UsageWindow strange{"w", used, minutes, Instant(Seconds(reset))};
                const std::vector<UsagePoint> recent{{Instant(Seconds(reset)), used}};
                health(strange, now);
                if (const auto plan = planning(strange, now)) {
                    EXPECT_LE(std::abs(plan->points), 100);
                }
                if (const auto outlook = forecast(strange, now, recent);
                    outlook && outlook->emptyAt) {
                    EXPECT_LT(*outlook->emptyAt, *strange.resetsAt);
                }
            }
        }
    }
}

} // namespace vellmark
