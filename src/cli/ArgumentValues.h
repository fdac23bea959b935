#pragma once

#include "model/AgentProviderID.h"
#include "text/Instant.h"

#include <cstdint>
#include <string>

namespace vellmark {

/// Values of arguments. All throw WrongArguments that names `option` and the text.

/// Seconds since 1970-01-01 UTC (fractions allowed), or ISO 8601 with a zone.
Instant instantArgument(const std::string& option, const std::string& text);

/// A whole number from `least` to `most`.
std::int64_t integerArgument(const std::string& option, const std::string& text, std::int64_t least,
                             std::int64_t most);

/// A registered agent.
AgentProviderID agentArgument(const std::string& text);

} // namespace vellmark
