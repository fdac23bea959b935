#pragma once

#include "text/Instant.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace vellmark {

/// A date in the Gregorian calendar of one time zone. Months and days count from 1.
struct CalendarDate {
    int year = 2000;
    int month = 1;
    int day = 1;
    int hour = 0;
    int minute = 0;
    int second = 0;
    bool operator==(const CalendarDate&) const = default;
};

struct TimeZoneRules;

/// A time zone by identifier ("Europe/Zurich") or as a fixed offset. A value that is cheap to copy;
/// safe to use from several threads at once.
class TimeZone {
public:
    /// The zone that the system is set to now, even if that changed while the program was running.
    static TimeZone system();
    static TimeZone utc();
    /// Absent when `identifier` is unknown.
    static std::optional<TimeZone> named(std::string_view identifier);
    /// A zone by the abbreviation that people write ("JST"), in either case; absent when unknown.
    static std::optional<TimeZone> abbreviated(std::string_view abbreviation);
    static TimeZone fixedOffset(Seconds eastOfUTC);

    const std::string& identifier() const;

    /// Instants further away than some 28,000 years are taken as that far away.
    CalendarDate calendarDate(Instant instant) const;
    /// Fields out of range are carried over (day 32 is the next month's first); a local time that
    /// does not exist is moved forward, and one that exists twice means the earlier.
    Instant instant(const CalendarDate& date) const;

private:
    friend struct TimeZoneRules;
    explicit TimeZone(std::shared_ptr<const TimeZoneRules> rules) : rules_(std::move(rules)) {}
    std::shared_ptr<const TimeZoneRules> rules_;
};

} // namespace vellmark
