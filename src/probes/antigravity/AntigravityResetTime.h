#pragma once

#include "text/Dates.h"
#include "text/Instant.h"

#include <optional>
#include <string_view>

namespace vellmark {

/// Reads when a quota resets: an ISO 8601 date-time at the start of `text`, or else a date and a
/// time anywhere in it ("resets 2025-06-01 14:00 CEST"). Without a known zone's abbreviation the
/// time is in `localZone`.
std::optional<Instant> antigravityResetTime(std::string_view text, const TimeZone& localZone);

} // namespace vellmark
