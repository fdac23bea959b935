#include "probes/antigravity/AntigravityResetTime.h"

#include "text/Pattern.h"
#include "text/TerminalText.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

namespace vellmark {

namespace {

/// Abbreviations with their offset from UTC in hours, whatever else they may mean elsewhere.
constexpr std::array<std::pair<std::string_view, int>, 18> knownOffsets = {{
    {"UTC", 0},
    {"GMT", 0},
    {"Z", 0},
    {"WET", 0},
    {"WEST", 1},
    {"BST", 1},
    {"CET", 1},
    {"CEST", 2},
    {"EET", 2},
    {"EEST", 3},
    {"PST", -8},
    {"PDT", -7},
    {"MST", -7},
    {"MDT", -6},
    {"CST", -6},
    {"CDT", -5},
    {"EST", -5},
    {"EDT", -4},
}};

TimeZone zoneOf(std::string abbreviation, const TimeZone& localZone) {
    std::transform(abbreviation.begin(), abbreviation.end(), abbreviation.begin(), [](char letter) {
        return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
    });
    const auto known = std::find_if(knownOffsets.begin(), knownOffsets.end(),
                                    [&](const auto& entry) { return entry.first == abbreviation; });
    if (known != knownOffsets.end()) {
        return TimeZone::fixedOffset(std::chrono::hours(known->second));
    }
    return abbreviation.empty() ? localZone
                                : TimeZone::abbreviated(abbreviation).value_or(localZone);
}

} // namespace

std::optional<Instant> antigravityResetTime(std::string_view text, const TimeZone& localZone) {
    text = trimmed(text);
    if (text.empty()) {
        return std::nullopt;
    }
    static const Pattern firstWord(R"(^\S+)");
    if (const auto word = firstWord.search(text)) {
        if (auto instant = parseISO8601(word->whole(), false)) {
            return instant;
        }
        if (auto instant = parseISO8601(word->whole(), true)) {
            return instant;
        }
    }
    static const Pattern dateAndTime(
        R"((\d{4}-\d{2}-\d{2})[ T](\d{2}:\d{2})(?::(\d{2}))?(?:\s*([A-Za-z]{2,5}))?)");
    const auto match = dateAndTime.search(text);
    if (!match) {
        return std::nullopt;
    }
    const std::string_view seconds = match->groups[3].value_or("00");
    const std::string date = std::string(match->group(1)) + " " + std::string(match->group(2)) +
                             ":" + std::string(seconds);
    return parseDate(date, "yyyy-MM-dd HH:mm:ss", zoneOf(std::string(match->group(4)), localZone));
}

} // namespace vellmark
