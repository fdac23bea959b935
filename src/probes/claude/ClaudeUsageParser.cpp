#include "probes/claude/ClaudeUsageParser.h"

#include "text/Dates.h"
#include "text/DecimalNumber.h"
#include "text/Pattern.h"
#include "text/TerminalText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <iterator>
#include <span>

namespace vellmark::ClaudeUsageParser {

namespace {

struct Section {
    std::string_view heading;
    std::string_view windowID;
    double minutes;
};

constexpr std::array<Section, 3> sections = {{
    {"Current session", "session", 300},
    {"Current week (all models)", "weekly", 10080},
    {"Current week (Fable)", claudeModelWindowID, 10080},
}};

constexpr std::string_view creditsHeading = "Usage credits";
constexpr std::string_view resetsPrefix = "Resets ";

using Lines = std::span<const std::string_view>;

/// The up to five lines below the last line that is exactly `heading`.
Lines blockBelow(const ClaudeScreen& screen, std::string_view heading) {
    const Lines lines = screen.lines();
    const auto found = std::find(lines.rbegin(), lines.rend(), heading);
    const auto first = static_cast<std::size_t>(std::distance(found, lines.rend()));
    return found == lines.rend()
               ? Lines()
               : lines.subspan(first, std::min<std::size_t>(5, lines.size() - first));
}

std::optional<double> usedPercent(Lines block) {
    // A second percentage, of what is left, may stand between the number and its word.
    static const Pattern pattern(R"((\d+(?:[.,]\d+)?)%\s+(?:\d+(?:[.,]\d+)?%\s+)?used)");
    for (const std::string_view line : block) {
        if (const auto match = pattern.search(line)) {
            std::string number(match->group(1));
            std::replace(number.begin(), number.end(), ',', '.');
            return parseDecimal(number);
        }
    }
    return std::nullopt;
}

std::optional<Instant> resetTime(Lines block, Instant now) {
    const auto line = std::find_if(block.begin(), block.end(), [](std::string_view candidate) {
        return candidate.starts_with(resetsPrefix);
    });
    return line == block.end() ? std::nullopt : resetDate(*line, now);
}

std::optional<UsageWindow> window(const ClaudeScreen& screen, const Section& section, Instant now) {
    const Lines block = blockBelow(screen, section.heading);
    const std::optional<double> used = usedPercent(block);
    if (!used) {
        return std::nullopt;
    }
    return UsageWindow{std::string(section.windowID), *used, section.minutes,
                       resetTime(block, now)};
}

std::optional<std::string> accountLabel(const std::string& text) {
    static const Pattern pattern(R"(Email:\s*([^\s]+))");
    const auto match = pattern.search(text);
    return match ? std::optional<std::string>(match->group(1)) : std::nullopt;
}

bool equalsIgnoringCase(std::string_view left, std::string_view right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(), [](char a, char b) {
        const auto lower = [](char c) {
            return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
        };
        return lower(a) == lower(b);
    });
}

std::optional<std::string> plan(const std::string& text) {
    static const Pattern pattern(R"(Login method:\s*(.+))");
    const auto match = pattern.search(text);
    if (!match) {
        return std::nullopt;
    }
    constexpr std::string_view suffix = " account";
    std::string_view method = trimmed(match->group(1));
    if (method.size() >= suffix.size() &&
        equalsIgnoringCase(method.substr(method.size() - suffix.size()), suffix)) {
        method.remove_suffix(suffix.size());
    }
    return std::string(trimmed(method));
}

std::optional<CreditInfo> credit(const ClaudeScreen& screen) {
    for (const std::string_view line : blockBelow(screen, creditsHeading)) {
        if (line.find("spent") != std::string_view::npos) {
            return CreditInfo::line(std::string(line));
        }
    }
    return std::nullopt;
}

const TimeZone& zurich() {
    // The zone belongs to the data that every ICU brings along; UTC is only a guard.
    static const TimeZone zone = TimeZone::named("Europe/Zurich").value_or(TimeZone::utc());
    return zone;
}

/// The fields of a text without a year. They are read in UTC, because the year that stands in for
/// the missing one has its clock changes on other days.
std::optional<CalendarDate> parsedFields(const std::string& text,
                                         std::initializer_list<std::string_view> formats) {
    for (const std::string_view format : formats) {
        if (const auto instant = parseDate(text, format, TimeZone::utc())) {
            return TimeZone::utc().calendarDate(*instant);
        }
    }
    return std::nullopt;
}

Instant instantOf(const CalendarDate& day, const CalendarDate& time) {
    return zurich().instant({day.year, day.month, day.day, time.hour, time.minute, 0});
}

} // namespace

AgentUsageSnapshot parseUsage(const ClaudeScreen& screen, Instant now) {
    AgentUsageSnapshot snapshot;
    snapshot.id = AgentProviderID::claude();
    for (const Section& section : sections) {
        if (auto found = window(screen, section, now)) {
            snapshot.windows.push_back(std::move(*found));
        }
    }
    if (snapshot.windows.empty()) {
        throw UsageProviderError(UsageProviderError::Kind::claudeNoQuotas);
    }
    snapshot.accountLabel = accountLabel(screen.text());
    snapshot.plan = plan(screen.text());
    snapshot.credit = credit(screen);
    snapshot.source = SnapshotSource::live;
    snapshot.updatedAt = now;
    return snapshot;
}

std::optional<std::string> pageError(const ClaudeScreen& screen) {
    static constexpr std::array<std::string_view, 6> phrases = {
        "Esc to retry",        "Failed to load usage", "Failed to fetch usage",
        "Couldn't load usage", "Could not load usage", "Unable to load usage"};
    static const Pattern any("(?i)Esc to retry|(?:Failed to (?:load|fetch)|Couldn't load|"
                             "Could not load|Unable to load) usage");
    if (!any.matches(screen.text())) {
        return std::nullopt;
    }
    // The phrase that counts is the first of the list, not the first on the page.
    std::size_t first = phrases.size();
    for (const std::string_view line : screen.lines()) {
        if (line.starts_with(claudeTimingLinePrefix)) {
            continue;
        }
        for (auto match = any.search(line); match;
             match = any.search(line, match->position + match->whole().size())) {
            const auto phrase = std::find_if(phrases.begin(), phrases.end(), [&](auto candidate) {
                return equalsIgnoringCase(candidate, match->whole());
            });
            first = std::min(first, static_cast<std::size_t>(phrase - phrases.begin()));
        }
    }
    return first < phrases.size() ? std::optional<std::string>(phrases[first]) : std::nullopt;
}

bool endsWithSpendLine(const ClaudeScreen& screen) {
    static const Pattern pattern(R"(^\$[0-9.,']+ ?/ ?\$[0-9.,']+ spent)");
    return pattern.matches(screen.lastLine());
}

std::string pageEndingVariant(const ClaudeScreen& screen) {
    std::string ending(screen.lastLine());
    std::erase_if(ending, [](char character) {
        return (character >= '0' && character <= '9') || character == '%';
    });
    return firstCharacters(trimmed(ending), 48);
}

std::optional<Instant> resetDate(std::string_view line, Instant now) {
    static const Pattern trailingNote(R"(\s*\([^)]*\)\s*$)");
    std::string text(line.starts_with(resetsPrefix) ? line.substr(resetsPrefix.size()) : line);
    if (const auto note = trailingNote.search(text)) {
        text.resize(note->position);
    }
    text = trimmed(text);
    const CalendarDate today = zurich().calendarDate(now);
    if (auto date = parsedFields(text, {"MMM d 'at' ha", "MMM d 'at' h:mma"})) {
        date->year = today.year;
        // A reset in early January, read in late December.
        if (instantOf(*date, *date) < now - Seconds(86400)) {
            date->year += 1;
        }
        return instantOf(*date, *date);
    }
    if (const auto time = parsedFields(text, {"ha", "h:mma"})) {
        const Instant reset = instantOf(today, *time);
        CalendarDate tomorrow = today;
        tomorrow.day += 1;
        return reset > now ? reset : instantOf(tomorrow, *time);
    }
    return std::nullopt;
}

std::optional<Stamps> stamps(const ClaudeScreen& screen) {
    // More digits than a session can have milliseconds are none of the script's.
    static const Pattern pattern("^VELLMARK_TIMING (-?[0-9]{1,12}) (-?[0-9]{1,12}) (-?[0-9]{1,12}) "
                                 "(-?[0-9]{1,12})$");
    for (auto line = screen.lines().rbegin(); line != screen.lines().rend(); ++line) {
        if (!line->starts_with(claudeTimingLinePrefix)) {
            continue;
        }
        if (const auto match = pattern.search(*line)) {
            Stamps result;
            std::int64_t* const fields[] = {&result.prompt, &result.status, &result.blocks,
                                            &result.quiet};
            for (std::size_t index = 0; index < std::size(fields); ++index) {
                const std::string_view digits = match->group(index + 1);
                std::from_chars(digits.data(), digits.data() + digits.size(), *fields[index]);
            }
            return result;
        }
    }
    return std::nullopt;
}

} // namespace vellmark::ClaudeUsageParser
