#pragma once

#include "model/AgentUsageSnapshot.h"
#include "text/Instant.h"

#include <optional>
#include <span>

namespace vellmark {

/// The arithmetic of health, planning and forecast: pure functions of a window and now.

/// A share of everything, in percent.
inline constexpr double fullPercent = 100;

/// Remaining share in percent, 100 − used, not clamped.
double remainingPercent(const UsageWindow& window);

/// Nothing is left of it, as far as it is shown.
bool isUsedUp(const UsageWindow& window);

/// Its reset should have come.
bool isDue(const UsageWindow& window, Instant now);

/// Whether nothing is left for `other` to use once `wider` is used up: a longer window of the same
/// quota, or one of all models beside that of a single model.
bool covers(const UsageWindow& wider, const UsageWindow& other);

/// Whether what `other` counts cannot be used while `empty` is used up: both are windows of one
/// quota, or `empty` counts all models and `other` a single one.
bool blocks(const UsageWindow& empty, const UsageWindow& other);

/// The share of the window's time that is left, in percent; absent without a reset time or a
/// positive duration. Negative once the reset is past, above 100 when it is too far away.
std::optional<double> timeRemainingPercent(const UsageWindow& window, Instant now);

/// The share of the window's time that has passed, clamped to 0 to 100.
std::optional<double> elapsedPercent(const UsageWindow& window, Instant now);

/// How pressing a window is, in rising order.
enum class Severity { fine = 0, attention = 1, critical = 2 };
Severity severity(const UsageWindow& window, Instant now);

UsageHealth health(const UsageWindow& window, Instant now);
/// The worst of the agent's windows, critical too when the agent refuses to work; `unavailable`
/// when it has no windows.
UsageHealth health(const AgentUsageSnapshot& snapshot, Instant now);
/// The agent says that it refuses to work until a quota is back. Only its own word tells that, and
/// that the quota is back: figures may be full while credits are used, and a reset may be late.
bool isUsedUp(const AgentUsageSnapshot& snapshot);
/// When an agent that refuses will work again, as far as its windows tell: the last reset of those
/// that are used up, where all of them have one to come. Limits of single models and of spending do
/// not count.
std::optional<Instant> usedUpUntil(const AgentUsageSnapshot& snapshot, Instant now);

/// The worse of two: critical, attention, unavailable, healthy, in this order.
UsageHealth worse(UsageHealth first, UsageHealth second);

/// Percent used per elapsed fraction of the window; absent without a reset time and duration, with
/// nothing used, or before 5 % of the window has passed.
std::optional<double> pace(const UsageWindow& window, Instant now);

/// What is left compared with the time that is left; within 5 points of it is on plan.
struct Planning {
    enum class Kind { reserve, onPlan, deficit };
    Kind kind = Kind::onPlan;
    /// Remaining − time remaining, in points, both taken as 0 to 100.
    double points = 0;
    bool operator==(const Planning&) const = default;
};
/// Absent without a reset time and duration, and once the reset is past.
std::optional<Planning> planning(const UsageWindow& window, Instant now);

/// A point of recent history, for the forecast's recent pace.
struct UsagePoint {
    Instant capturedAt{};
    double usedPercent = 0;
    bool operator==(const UsagePoint&) const = default;
};

/// Whether the quota lasts at the present pace.
struct Forecast {
    /// When it runs out; absent when it lasts until the reset.
    std::optional<Instant> emptyAt;
    bool operator==(const Forecast&) const = default;
};

/// The pace at which a quota is taken to go on being used, in percent a second; grounds as below.
std::optional<double> expectedRate(const UsageWindow& window, Instant now,
                                   std::span<const UsagePoint> recent = {});

/// `recent` holds the window's samples, oldest first; a steeper pace found in those of the last two
/// hours counts, provided that they belong to the present period and span ten minutes. Absent when
/// there are no grounds for a forecast: no pace, or the reset is past.
std::optional<Forecast> forecast(const UsageWindow& window, Instant now,
                                 std::span<const UsagePoint> recent = {});

} // namespace vellmark
