#include "store/RecordedDays.h"

#include <algorithm>
#include <cmath>

namespace vellmark {

namespace {

constexpr std::int64_t longestGap = 7;
constexpr int daysThatCount = 7;

} // namespace

std::int64_t dayNumber(Instant instant) {
    // Far from any date, and from the limits of the number: a file may say anything.
    constexpr double farthest = 1e9;
    const double number = std::floor(instant.time_since_epoch() / oneDay);
    return static_cast<std::int64_t>(std::clamp(number, -farthest, farthest));
}

void RecordedDays::add(Instant instant) {
    const std::int64_t number = dayNumber(instant);
    if (days_.empty() || number != latest_) {
        days_.insert(number);
        latest_ = number;
    }
}

Instant RecordedDays::reference(Instant now) const {
    if (days_.empty()) {
        return now;
    }
    std::int64_t last = *days_.begin(); // of the newest days that count
    std::int64_t previous = last;
    int run = 0;
    bool isFirstRun = true;
    for (const std::int64_t number : days_) {
        if (number - previous > longestGap) {
            run = 0;
            isFirstRun = false;
        }
        previous = number;
        if (++run >= daysThatCount || isFirstRun) {
            last = number;
        }
    }
    const Instant end(static_cast<double>(last + 1) * oneDay -
                      Seconds(1)); // of that day, not after it
    return now - end > longestGap * oneDay ? end : now;
}

bool RecordedDays::reachBefore(Instant instant) const {
    return !days_.empty() && *days_.begin() < dayNumber(instant);
}

} // namespace vellmark
