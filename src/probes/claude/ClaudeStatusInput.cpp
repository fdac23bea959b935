#include "probes/claude/ClaudeStatusInput.h"

#include "text/BoundedJSON.h"

#include <nlohmann/json.hpp>

#include <array>
#include <cmath>

namespace vellmark {

namespace {

/// Everything that is read; the rest is passed over unbuilt.
constexpr std::array<std::string_view, 9> readMembers = {
    "session_id",  "cwd",       "cost",      "total_api_duration_ms",
    "rate_limits", "five_hour", "seven_day", "used_percentage",
    "resets_at",
};

/// More is no name of a session.
constexpr std::size_t longestName = 200;
constexpr double sessionMinutes = 300;
constexpr double weekMinutes = 10080;
/// A quota may be overdrawn a little; a share far above everything is none.
constexpr double mostUsed = 200;
/// A clock may be wrong by so much.
constexpr Seconds clockSlack{3600};

const JSON& member(const JSON& object, const char* name) {
    static const JSON none;
    if (!object.is_object()) {
        return none;
    }
    const auto found = object.find(name);
    return found != object.end() ? *found : none;
}

std::string text(const JSON& value) {
    return value.is_string() ? value.get<std::string>() : std::string();
}

std::optional<double> number(const JSON& value) {
    return value.is_number() && std::isfinite(value.get<double>())
               ? std::optional(value.get<double>())
               : std::nullopt;
}

void addWindow(std::vector<UsageWindow>& windows, const char* id, const JSON& source,
               double minutes, Instant now) {
    const auto used = number(member(source, "used_percentage"));
    if (!used || *used < 0 || *used > mostUsed) {
        return;
    }
    UsageWindow window{
        .id = id, .usedPercent = *used, .windowDurationMinutes = minutes, .resetsAt = {}};
    if (const auto reset = number(member(source, "resets_at"))) {
        const double ahead = *reset - unixSeconds(now);
        if (ahead <= 0 || ahead > minutes * 60 + clockSlack.count()) {
            return; // of a period that is over, or of no such window
        }
        window.resetsAt = instantFromUnixSeconds(*reset);
    }
    windows.push_back(std::move(window));
}

} // namespace

std::optional<ClaudeStatusInput> parseClaudeStatusInput(std::string_view input, Instant now) {
    JSON document;
    try {
        document = parsedJSON(input, readMembers);
    } catch (const JSONDecodingError&) {
        return std::nullopt;
    }
    ClaudeStatusInput told{.session = text(member(document, "session_id")),
                           .turn = {},
                           .directory = text(member(document, "cwd")),
                           .windows = {}};
    if (told.session.empty() || told.session.size() > longestName) {
        return std::nullopt;
    }
    if (const auto spent = number(member(member(document, "cost"), "total_api_duration_ms"))) {
        told.turn = std::to_string(*spent);
    }
    const JSON& limits = member(document, "rate_limits");
    addWindow(told.windows, "session", member(limits, "five_hour"), sessionMinutes, now);
    addWindow(told.windows, "weekly", member(limits, "seven_day"), weekMinutes, now);
    return told;
}

} // namespace vellmark
