#include "cli/ArgumentValues.h"

#include "cli/WrongArguments.h"
#include "probes/ProviderRegistry.h"
#include "text/Dates.h"
#include "text/DecimalNumber.h"
#include "text/TerminalText.h"

#include <charconv>
#include <cmath>

namespace vellmark {

Instant instantArgument(const std::string& option, const std::string& text) {
    if (const auto seconds = parseDecimal(text); seconds && std::isfinite(*seconds)) {
        return instantFromUnixSeconds(*seconds);
    }
    for (const bool fractionalSeconds : {false, true}) {
        if (const auto instant = parseISO8601(text, fractionalSeconds)) {
            return *instant;
        }
    }
    throw WrongArguments("cli.error.notAnInstant", option, singleLine(text));
}

std::int64_t integerArgument(const std::string& option, const std::string& text, std::int64_t least,
                             std::int64_t most) {
    std::int64_t value = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || stop != end || value < least || value > most) {
        throw WrongArguments("cli.error.notANumber", option, singleLine(text));
    }
    return value;
}

AgentProviderID agentArgument(const std::string& text) {
    const AgentProviderID id(text);
    if (providerDescriptor(id) != nullptr) {
        return id;
    }
    std::string known;
    for (const ProviderRegistration& registration : providerRegistry()) {
        known += (known.empty() ? "" : ", ") + registration.descriptor.id.rawValue;
    }
    throw WrongArguments("cli.error.unknownAgent", singleLine(text), known);
}

} // namespace vellmark
