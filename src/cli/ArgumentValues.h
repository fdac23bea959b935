#pragma once

#include "model/AgentProviderID.h"
#include "text/Instant.h"
#include "text/TimeZone.h"

#include <cstdint>
#include <string>

namespace vellmark {

/// Values of arguments. All throw WrongArguments that names `option` and the text.

/// Seconds since 1970-01-01 UTC (fractions allowed), or ISO 8601 with a zone.
Instant instantArgument(const std::string& option, const std::string& text);

/// Which moment of a day a date means that has no time.
enum class DayEdge { begin, end };

/// The same, or as people write it, where `zone` is: a date ("2026-11-01"), a date and a time
/// ("2026-11-01 14:30"), a time of today ("14:30"), or how long ago ("90m", "12h", "7d", "2w").
Instant momentArgument(const std::string& option, const std::string& text, Instant now,
                       const TimeZone& zone, DayEdge edge);

/// A whole number from `least` to `most`.
std::int64_t integerArgument(const std::string& option, const std::string& text, std::int64_t least,
                             std::int64_t most);

/// A registered agent.
AgentProviderID agentArgument(const std::string& text);

} // namespace vellmark
