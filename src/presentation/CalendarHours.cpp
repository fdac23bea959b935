#include "presentation/CalendarHours.h"

#include <chrono>
#include <cmath>

namespace vellmark {

namespace {

std::chrono::sys_days daysOf(const CalendarDate& date) {
    return std::chrono::year(date.year) / std::chrono::month(static_cast<unsigned>(date.month)) /
           std::chrono::day(static_cast<unsigned>(date.day));
}

} // namespace

const CalendarHour& CalendarHours::at(Instant instant) {
    if (instant >= current_.begin && instant < current_.end) {
        return current_;
    }
    const CalendarDate date = zone_.calendarDate(instant);
    const std::chrono::sys_days days = daysOf(date);
    const Seconds whole(std::floor(instant.time_since_epoch().count()));
    current_.begin = Instant(whole) - Seconds(date.minute * 60 + date.second);
    current_.end = current_.begin + oneHour;
    current_.day = days.time_since_epoch().count();
    current_.weekday = static_cast<int>(std::chrono::weekday(days).iso_encoding()) - 1;
    current_.hour = date.hour;
    return current_;
}

Instant beginOfDay(Instant instant, const TimeZone& zone) {
    return beginOfDay(instant, 0, zone);
}

Instant beginOfDay(Instant instant, int days, const TimeZone& zone) {
    const CalendarDate date = zone.calendarDate(instant);
    return zone.instant({.year = date.year,
                         .month = date.month,
                         .day = date.day + days,
                         .hour = 0,
                         .minute = 0,
                         .second = 0});
}

} // namespace vellmark
