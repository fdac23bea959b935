#pragma once

#include <chrono>

namespace vellmark {

using Seconds = std::chrono::duration<double>;

inline constexpr Seconds oneMinute{60};
inline constexpr Seconds oneHour{3'600};
inline constexpr Seconds oneDay{86'400};

/// A wall clock whose epoch is 2001-01-01 00:00:00 UTC, counted in seconds as a double.
///
/// The persisted files hold exactly this number, so an instant that was read is written back bit
/// for bit.
struct ReferenceClock {
    using duration = Seconds;
    using rep = duration::rep;
    using period = duration::period;
    using time_point = std::chrono::time_point<ReferenceClock>;
    static constexpr bool is_steady = false;

    static time_point now();
};

using Instant = ReferenceClock::time_point;

/// Seconds from 1970-01-01 to the reference date.
inline constexpr double referenceDateInUnixSeconds = 978307200.0;

constexpr Instant instantFromUnixSeconds(double seconds) {
    return Instant(Seconds(seconds - referenceDateInUnixSeconds));
}

constexpr double unixSeconds(Instant instant) {
    return instant.time_since_epoch().count() + referenceDateInUnixSeconds;
}

} // namespace vellmark
