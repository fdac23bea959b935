#include "store/PlausibleFigures.h"

#include <cmath>
#include <utility>

namespace vellmark {

namespace {

/// No quota runs longer, and no clock that sets one is further off.
constexpr double longestMinutes = 10 * 366 * 24 * 60.0;
/// Agents let a quota be overdrawn, but not ten times over; a little below nothing is rounding.
constexpr double leastUsed = -0.5;
constexpr double mostUsed = 1000;

// All of these are false for NaN.

bool isPlausibleShare(double used) {
    return used >= leastUsed && used <= mostUsed;
}

bool isPlausibleDuration(double minutes) {
    return minutes > 0 && minutes <= longestMinutes;
}

bool isPlausibleReset(Instant reset, Instant now) {
    return std::abs((reset - now).count()) <= longestMinutes * 60;
}

} // namespace

bool isPlausibleSample(double usedPercent, std::optional<Instant> resetsAt, Instant capturedAt) {
    return isPlausibleShare(usedPercent) && (!resetsAt || isPlausibleReset(*resetsAt, capturedAt));
}

std::vector<ImplausibleFigure> removeImplausibleFigures(AgentUsageSnapshot& reading, Instant now) {
    std::vector<ImplausibleFigure> found;
    std::vector<UsageWindow> kept;
    for (UsageWindow& window : reading.windows) {
        if (window.windowDurationMinutes && !isPlausibleDuration(*window.windowDurationMinutes)) {
            found.push_back({window, ImplausibleFigure::Kind::duration});
            window.windowDurationMinutes.reset();
        }
        if (window.resetsAt && !isPlausibleReset(*window.resetsAt, now)) {
            found.push_back({window, ImplausibleFigure::Kind::reset});
            window.resetsAt.reset();
        }
        if (!isPlausibleShare(window.usedPercent)) {
            found.push_back({window, ImplausibleFigure::Kind::used});
            reading.isIncomplete = true;
            continue;
        }
        kept.push_back(std::move(window));
    }
    reading.windows = std::move(kept);
    return found;
}

} // namespace vellmark
