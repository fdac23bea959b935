#pragma once

#include "text/TimeZone.h"

#include <unicode/basictz.h>

#include <memory>
#include <string>

namespace vellmark {

/// What stands behind a TimeZone; for the sources of this folder only.
struct TimeZoneRules {
    TimeZoneRules(std::unique_ptr<icu::BasicTimeZone> zone, std::string name)
        : icuZone(std::move(zone)), identifier(std::move(name)) {}

    static const TimeZoneRules& of(const TimeZone& zone) { return *zone.rules_; }
    static TimeZone timeZone(std::unique_ptr<icu::TimeZone> zone);

    std::unique_ptr<const icu::BasicTimeZone> icuZone;
    std::string identifier;
};

/// ICU's form of an instant: milliseconds since 1970, within the years that calendars can name.
UDate icuDate(Instant instant);

} // namespace vellmark
