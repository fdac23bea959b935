#pragma once

#include "text/TimeZone.h"

#include <optional>
#include <string>
#include <string_view>

namespace vellmark {

/// Reads `text` by an ICU date pattern in the locale en_US_POSIX, strictly: the whole text must
/// match, and a date or a local time that does not exist is refused. Fields that the pattern lacks
/// come from 1 January 2000, 00:00. To read mere fields, read them in UTC, where every time of day
/// exists.
std::optional<Instant> parseDate(std::string_view text, std::string_view pattern,
                                 const TimeZone& zone);

/// Formats by an ICU date pattern in the locale en_US_POSIX.
std::string formatDate(Instant instant, std::string_view pattern, const TimeZone& zone);

/// An ISO 8601 internet date-time with zone ("2025-06-01T14:00:00Z", "…+02:00", "…+0200");
/// fractions of a second are read only when `fractionalSeconds` is set, and are then required.
std::optional<Instant> parseISO8601(std::string_view text, bool fractionalSeconds);

} // namespace vellmark
