#include "presentation/AgentStanding.h"

#include "store/ReadingTime.h"
#include "text/Formatting.h"

#include <algorithm>
#include <tuple>

namespace vellmark {
namespace {

/// Of the used-up windows that keep `window` from being used, the one that does so for longest.
const UsageWindow* holderOf(const UsageWindow& window, const AgentUsageSnapshot& snapshot,
                            Instant now) {
    const UsageWindow* holder = nullptr;
    for (const UsageWindow& other : snapshot.windows) {
        if (isUsedUp(other) && !isDue(other, now) && covers(other, window) &&
            (!holder || other.resetsAt > holder->resetsAt)) {
            holder = &other;
        }
    }
    return holder;
}

WindowStanding windowStanding(const UsageWindow& window, const AgentUsageSnapshot& snapshot,
                              const UsageState& state, Instant now) {
    using Kind = WindowStanding::Kind;
    WindowStanding standing{.readAt = readingTimeOf(state, snapshot, window),
                            .isOld = isOldReading(state, snapshot, window, now)};
    standing.judgedAt = standing.isOld ? std::min(standing.readAt, now) : now;
    standing.health = health(window, standing.judgedAt);
    if (isDue(window, now)) {
        standing.kind = Kind::due;
        standing.health = UsageHealth::unavailable;
    } else if (const UsageWindow* holder = holderOf(window, snapshot, now)) {
        standing.kind = Kind::held;
        standing.holder = holder;
        standing.health = UsageHealth::unavailable;
    } else if (isUsedUp(window)) {
        standing.kind = Kind::usedUp;
    }
    return standing;
}

/// Greater for what presses more.
auto urgency(const PressingWindow& pressing) {
    const UsageWindow& window = *pressing.window;
    const Instant judgedAt = pressing.standing.judgedAt;
    const bool isUsedUp = pressing.standing.kind == WindowStanding::Kind::usedUp;
    return std::tuple(isUsedUp, isUsedUp ? window.resetsAt : std::nullopt,
                      severity(window, judgedAt), pace(window, judgedAt).value_or(0),
                      -remainingPercent(window));
}

/// Figures of this minute have no age.
bool hasAge(bool isOld, Instant readAt, Instant now) {
    return isOld && now - readAt >= Seconds(60);
}

} // namespace

bool AgentStanding::isDue() const {
    return health == UsageHealth::unavailable &&
           std::ranges::find(windows, WindowStanding::Kind::due, &WindowStanding::kind) !=
               windows.end();
}

AgentStanding standingOf(const AgentUsageSnapshot& snapshot, const UsageState& state, Instant now) {
    AgentStanding standing{.readAt = readingTimeOf(state, snapshot),
                           .isOld = isOldReading(state, snapshot, now)};
    if (!snapshot.windows.empty()) {
        standing.health = UsageHealth::healthy;
    }
    for (const UsageWindow& window : snapshot.windows) {
        standing.windows.push_back(windowStanding(window, snapshot, state, now));
        standing.health = worse(standing.health, standing.windows.back().health);
    }
    if (isUsedUp(snapshot)) {
        standing.health = UsageHealth::critical;
    }
    return standing;
}

std::optional<PressingWindow> mostPressingWindow(const UsageState& state, Instant now,
                                                 const WindowChoice& accepts) {
    std::optional<PressingWindow> most;
    for (const AgentUsageSnapshot& snapshot : state.snapshots) {
        const AgentStanding agent = standingOf(snapshot, state, now);
        for (std::size_t index = 0; index < snapshot.windows.size(); ++index) {
            const PressingWindow candidate{&snapshot, &snapshot.windows[index],
                                           agent.windows[index]};
            if (candidate.standing.health != UsageHealth::unavailable &&
                (!accepts || accepts(snapshot, *candidate.window)) &&
                (!most || urgency(candidate) > urgency(*most))) {
                most = candidate;
            }
        }
    }
    return most;
}

std::string ageText(const AgentUsageSnapshot& snapshot, Instant readAt, Instant now,
                    const Localization& words) {
    return words.format(snapshot.mayBeNewer ? "popover.stale.atMost" : "popover.stale",
                        {roughDurationText(std::max(now - readAt, Seconds(0)), words)});
}

std::string ageText(const AgentUsageSnapshot& snapshot, const AgentStanding& standing, Instant now,
                    const Localization& words) {
    return hasAge(standing.isOld, standing.readAt, now)
               ? ageText(snapshot, standing.readAt, now, words)
               : std::string();
}

std::string ageText(const AgentUsageSnapshot& snapshot, const WindowStanding& standing, Instant now,
                    const Localization& words) {
    return hasAge(standing.isOld, standing.readAt, now)
               ? ageText(snapshot, standing.readAt, now, words)
               : std::string();
}

std::string briefAgeText(const AgentUsageSnapshot& snapshot, const AgentStanding& standing,
                         Instant now, const Localization& words) {
    if (!hasAge(standing.isOld, standing.readAt, now)) {
        return {};
    }
    return words.format(snapshot.mayBeNewer ? "popover.stale.brief.atMost" : "popover.stale.brief",
                        {roughDurationText(now - standing.readAt, words)});
}

} // namespace vellmark
