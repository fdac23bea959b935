#include "cli/ArgumentValues.h"

#include "cli/WrongArguments.h"
#include "probes/ProviderRegistry.h"
#include "text/Dates.h"
#include "text/DecimalNumber.h"
#include "text/TerminalText.h"

#include <charconv>
#include <cmath>
#include <initializer_list>
#include <optional>
#include <string_view>

namespace vellmark {

namespace {

std::optional<Instant> exactInstant(const std::string& text) {
    if (const auto seconds = parseDecimal(text); seconds && std::isfinite(*seconds)) {
        return instantFromUnixSeconds(*seconds);
    }
    for (const bool fractionalSeconds : {false, true}) {
        if (const auto instant = parseISO8601(text, fractionalSeconds)) {
            return instant;
        }
    }
    return std::nullopt;
}

/// "90m", "12h", "7d", "2w".
std::optional<Seconds> span(std::string_view text) {
    const auto unit = [&]() -> double {
        switch (text.empty() ? '\0' : text.back()) {
        case 'm':
            return 60;
        case 'h':
            return 3'600;
        case 'd':
            return 86'400;
        case 'w':
            return 7 * 86'400.0;
        default:
            return 0;
        }
    }();
    const auto count = parseDecimal(text.substr(0, text.size() - (text.empty() ? 0 : 1)));
    // No history is older than a century.
    if (unit == 0 || !count || !(*count >= 0) || *count * unit > 36'525 * 86'400.0) {
        return std::nullopt;
    }
    return Seconds(*count * unit);
}

/// The fields of a text by one of these patterns, whatever the zone.
std::optional<CalendarDate> fields(const std::string& text,
                                   std::initializer_list<std::string_view> patterns) {
    for (const std::string_view pattern : patterns) {
        if (const auto instant = parseDate(text, pattern, TimeZone::utc())) {
            return TimeZone::utc().calendarDate(*instant);
        }
    }
    return std::nullopt;
}

} // namespace

Instant instantArgument(const std::string& option, const std::string& text) {
    if (const auto instant = exactInstant(text)) {
        return *instant;
    }
    throw WrongArguments("cli.error.notAnInstant", option, singleLine(text));
}

Instant momentArgument(const std::string& option, const std::string& text, Instant now,
                       const TimeZone& zone, DayEdge edge) {
    if (const auto instant = exactInstant(text)) {
        return *instant;
    }
    if (const auto ago = span(text)) {
        return now - *ago;
    }
    if (auto day = fields(text, {"yyyy-MM-dd"})) {
        day->day += edge == DayEdge::end ? 1 : 0;
        return zone.instant(*day);
    }
    if (const auto moment = fields(text, {"yyyy-MM-dd HH:mm", "yyyy-MM-dd'T'HH:mm",
                                          "yyyy-MM-dd HH:mm:ss", "yyyy-MM-dd'T'HH:mm:ss"})) {
        return zone.instant(*moment);
    }
    if (const auto time = fields(text, {"HH:mm", "HH:mm:ss"})) {
        CalendarDate today = zone.calendarDate(now);
        today.hour = time->hour;
        today.minute = time->minute;
        today.second = time->second;
        return zone.instant(today);
    }
    throw WrongArguments("cli.error.notAMoment", option, singleLine(text));
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
