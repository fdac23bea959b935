#include "probes/claude/ClaudeStatusInput.h"

#include "probes/claude/ClaudeMembers.h"
#include "probes/claude/ClaudeModelWindow.h"
#include "text/BoundedJSON.h"

#include <nlohmann/json.hpp>

#include <array>

namespace vellmark {

namespace {

/// Everything that is read; the rest is passed over unbuilt.
constexpr std::array<std::string_view, 9> statusMembers = {
    "session_id",  "cwd",       "cost",      "total_api_duration_ms",
    "rate_limits", "five_hour", "seven_day", "used_percentage",
    "resets_at",
};

/// More is no name of a session.
constexpr std::size_t longestName = 200;
/// A quota may be overdrawn a little; a share far above everything is none.
constexpr double mostUsed = 200;
/// A clock may be wrong by so much.
constexpr Seconds clockSlack{3600};

void addWindow(std::vector<UsageWindow>& windows, const char* id, const JSON& source,
               double minutes, Instant now) {
    const auto used = numberOf(memberOf(source, "used_percentage"));
    if (!used || *used < 0 || *used > mostUsed) {
        return;
    }
    UsageWindow window{
        .id = id, .usedPercent = *used, .windowDurationMinutes = minutes, .resetsAt = {}};
    if (const auto reset = numberOf(memberOf(source, "resets_at"))) {
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
        document = parsedJSON(input, statusMembers);
    } catch (const JSONDecodingError&) {
        return std::nullopt;
    }
    ClaudeStatusInput told{.session = textOf(memberOf(document, "session_id")).value_or(""),
                           .turn = {},
                           .directory = textOf(memberOf(document, "cwd")).value_or(""),
                           .windows = {}};
    if (told.session.empty() || told.session.size() > longestName) {
        return std::nullopt;
    }
    if (const auto spent =
            numberOf(memberOf(memberOf(document, "cost"), "total_api_duration_ms"))) {
        told.turn = std::to_string(*spent);
    }
    const JSON& limits = memberOf(document, "rate_limits");
    addWindow(told.windows, "session", memberOf(limits, "five_hour"), claudeSessionMinutes, now);
    addWindow(told.windows, "weekly", memberOf(limits, "seven_day"), claudeWeekMinutes, now);
    return told;
}

} // namespace vellmark
