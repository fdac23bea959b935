#pragma once

#include "text/TimeZone.h"

#include <cstdint>

namespace vellmark {

/// One hour of the calendar.
struct CalendarHour {
    Instant begin{};
    Instant end{};
    /// Counts on by one from day to day.
    std::int64_t day = 0;
    /// 0 is Monday.
    int weekday = 0;
    /// 0 to 23. On a day of changing clocks one may be missing or come twice.
    int hour = 0;
};

/// Finds the hours of many instants that come in the order of time: the zone is asked once an hour.
class CalendarHours {
public:
    explicit CalendarHours(TimeZone zone) : zone_(std::move(zone)) {}
    const CalendarHour& at(Instant instant);

private:
    TimeZone zone_;
    CalendarHour current_;
};

/// The day's first instant.
Instant beginOfDay(Instant instant, const TimeZone& zone);
/// That of the day `days` later.
Instant beginOfDay(Instant instant, int days, const TimeZone& zone);

} // namespace vellmark
