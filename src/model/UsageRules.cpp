#include "model/UsageRules.h"

#include <algorithm>
#include <cmath>
#include <string_view>

namespace vellmark {

namespace {

/// At or below this remainder a window is critical, whatever time is left.
constexpr double nearlyNothing = 5;
/// Without a known time: below these remainders a window is critical or needs attention.
constexpr double criticalRemainder = 15;
constexpr double attentionRemainder = 30;
/// With a known time: points behind an even pace.
constexpr double criticalDeficit = -15;
constexpr double attentionDeficit = -5;

/// Points around an even pace that still count as on plan.
constexpr double planTolerance = 5;

/// A pace needs this share of the window, in percent, to have passed.
constexpr double leastElapsed = 5;

constexpr Seconds recentPast(2 * 3600);
/// A pace taken over less than this is a burst.
constexpr Seconds leastRecentSpan(600);
/// A fall of the used share beyond this is a reset, below it the agent's rounding.
constexpr double resetFall = 1;

/// What is written as 0 %.
constexpr double nothing = 0.05;

/// Running out this little before the reset is a rounding of the arithmetic.
constexpr Seconds leastShortfall(1);

/// What a window counts the use of: a pool, a further limit, or a model, by the part of its
/// identifier that names it; empty for everything that the agent does.
std::string_view scopeOf(const UsageWindow& window) {
    const std::string_view id = window.id;
    if (id.starts_with("pool:") || id.starts_with("limit:")) {
        return id.substr(0, id.find('|'));
    }
    return id.ends_with("-weekly") ? id : std::string_view();
}

bool isOfModel(const UsageWindow& window) {
    return window.id.ends_with("-weekly");
}

double clampedPercent(double percent) {
    return std::clamp(percent, 0.0, fullPercent);
}

Seconds length(const UsageWindow& window) {
    return Seconds(window.windowDurationMinutes.value_or(0) * 60);
}

Severity graded(double deficit) {
    if (deficit <= criticalDeficit) {
        return Severity::critical;
    }
    return deficit <= attentionDeficit ? Severity::attention : Severity::fine;
}

UsageHealth healthOf(Severity severity) {
    switch (severity) {
    case Severity::critical:
        return UsageHealth::critical;
    case Severity::attention:
        return UsageHealth::attention;
    case Severity::fine:
        break;
    }
    return UsageHealth::healthy;
}

/// Percent used per second over the recent points of the window's present period; absent when they
/// reach back too short a time.
std::optional<double> recentRate(const UsageWindow& window, Instant now,
                                 std::span<const UsagePoint> recent) {
    const Instant earliest = std::max(now - recentPast, *window.resetsAt - length(window));
    std::optional<UsagePoint> first;
    UsagePoint last;
    for (const UsagePoint& point : recent) {
        if (point.capturedAt < earliest || point.capturedAt > now) {
            continue;
        }
        if (!first || point.usedPercent < last.usedPercent - resetFall) {
            first = point;
        }
        last = point;
    }
    if (!first || now - first->capturedAt < leastRecentSpan ||
        window.usedPercent < last.usedPercent - resetFall) {
        return std::nullopt;
    }
    return (window.usedPercent - first->usedPercent) / (now - first->capturedAt).count();
}

} // namespace

double remainingPercent(const UsageWindow& window) {
    return fullPercent - window.usedPercent;
}

bool isUsedUp(const UsageWindow& window) {
    return remainingPercent(window) < nothing;
}

bool isDue(const UsageWindow& window, Instant now) {
    return window.resetsAt && *window.resetsAt <= now;
}

bool covers(const UsageWindow& wider, const UsageWindow& other) {
    const double length = wider.windowDurationMinutes.value_or(0);
    const double otherLength = other.windowDurationMinutes.value_or(0);
    if (!(length > 0 && otherLength > 0)) {
        return false;
    }
    if (scopeOf(wider) == scopeOf(other)) {
        return length > otherLength;
    }
    return scopeOf(wider).empty() && isOfModel(other) && length >= otherLength;
}

bool blocks(const UsageWindow& empty, const UsageWindow& other) {
    const std::string_view scope = scopeOf(empty);
    return scope == scopeOf(other) || (scope.empty() && isOfModel(other));
}

std::optional<double> timeRemainingPercent(const UsageWindow& window, Instant now) {
    const double seconds = length(window).count();
    if (!window.resetsAt || !std::isfinite(seconds) || seconds <= 0) {
        return std::nullopt;
    }
    const double percent = (*window.resetsAt - now) / length(window) * fullPercent;
    return std::isfinite(percent) ? std::optional(percent) : std::nullopt;
}

std::optional<double> elapsedPercent(const UsageWindow& window, Instant now) {
    const auto timeRemaining = timeRemainingPercent(window, now);
    return timeRemaining ? std::optional(clampedPercent(fullPercent - *timeRemaining))
                         : std::nullopt;
}

Severity severity(const UsageWindow& window, Instant now) {
    const double remaining = remainingPercent(window);
    if (remaining >= fullPercent) {
        return Severity::fine;
    }
    if (remaining <= nearlyNothing) {
        return Severity::critical;
    }
    const auto timeRemaining = timeRemainingPercent(window, now);
    if (!timeRemaining) {
        if (remaining < criticalRemainder) {
            return Severity::critical;
        }
        return remaining < attentionRemainder ? Severity::attention : Severity::fine;
    }
    if (*timeRemaining >= fullPercent) {
        return graded(remaining - fullPercent);
    }
    if (*timeRemaining < 0) {
        return Severity::fine;
    }
    return graded(clampedPercent(remaining) - *timeRemaining);
}

UsageHealth health(const UsageWindow& window, Instant now) {
    return healthOf(severity(window, now));
}

UsageHealth health(const AgentUsageSnapshot& snapshot, Instant now) {
    if (snapshot.windows.empty()) {
        return UsageHealth::unavailable;
    }
    if (isUsedUp(snapshot)) {
        return UsageHealth::critical;
    }
    Severity worst = Severity::fine;
    for (const UsageWindow& window : snapshot.windows) {
        worst = std::max(worst, severity(window, now));
    }
    return healthOf(worst);
}

bool isUsedUp(const AgentUsageSnapshot& snapshot) {
    const auto& allowance = snapshot.allowance;
    return allowance && (allowance->ordinaryUsageAllowed == false || allowance->reachedType);
}

std::optional<Instant> usedUpUntil(const AgentUsageSnapshot& snapshot, Instant now) {
    std::optional<Instant> until;
    for (const UsageWindow& window : snapshot.windows) {
        const bool isAside = window.id == "individual" || window.id.starts_with("limit:");
        if (isAside || remainingPercent(window) > 0) {
            continue;
        }
        if (!window.resetsAt || *window.resetsAt <= now) {
            return std::nullopt;
        }
        until = std::max(until.value_or(*window.resetsAt), *window.resetsAt);
    }
    return until;
}

UsageHealth worse(UsageHealth first, UsageHealth second) {
    for (const UsageHealth candidate :
         {UsageHealth::critical, UsageHealth::attention, UsageHealth::unavailable}) {
        if (first == candidate || second == candidate) {
            return candidate;
        }
    }
    return UsageHealth::healthy;
}

std::optional<double> pace(const UsageWindow& window, Instant now) {
    const auto elapsed = elapsedPercent(window, now);
    if (!elapsed || *elapsed < leastElapsed || !(window.usedPercent > 0)) {
        return std::nullopt;
    }
    return window.usedPercent / (*elapsed / fullPercent);
}

std::optional<Planning> planning(const UsageWindow& window, Instant now) {
    const auto timeRemaining = timeRemainingPercent(window, now);
    if (!timeRemaining || *timeRemaining < 0 || std::isnan(window.usedPercent)) {
        return std::nullopt;
    }
    Planning result;
    result.points =
        clampedPercent(remainingPercent(window)) - std::min(*timeRemaining, fullPercent);
    if (result.points > planTolerance) {
        result.kind = Planning::Kind::reserve;
    } else if (result.points < -planTolerance) {
        result.kind = Planning::Kind::deficit;
    }
    return result;
}

std::optional<double> expectedRate(const UsageWindow& window, Instant now,
                                   std::span<const UsagePoint> recent) {
    const auto overallPace = pace(window, now);
    if (!overallPace || *window.resetsAt <= now) {
        return std::nullopt;
    }
    const double overallRate = *overallPace / length(window).count();
    return std::max(overallRate, recentRate(window, now, recent).value_or(0));
}

std::optional<Forecast> forecast(const UsageWindow& window, Instant now,
                                 std::span<const UsagePoint> recent) {
    const auto rate = expectedRate(window, now, recent);
    if (!rate) {
        return std::nullopt;
    }
    const Seconds untilEmpty(std::max(remainingPercent(window), 0.0) / *rate);
    if (!(untilEmpty < *window.resetsAt - now - leastShortfall)) {
        return Forecast{};
    }
    return Forecast{.emptyAt = now + untilEmpty};
}

} // namespace vellmark
