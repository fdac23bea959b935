#include "probes/claude/ClaudeUsageParser.h"

#include "probes/claude/ClaudeModelWindow.h"
#include "text/Dates.h"
#include "text/DecimalNumber.h"
#include "text/Pattern.h"
#include "text/TerminalText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <iterator>
#include <span>
#include <utility>
#include <vector>

namespace vellmark::ClaudeUsageParser {

namespace {

struct Section {
    std::string_view heading;
    std::string_view windowID;
    double minutes;
};

constexpr std::string_view sessionHeading = "Current session";
constexpr std::string_view weekHeadingStart = "Current week (";
constexpr std::string_view creditsHeading = "Usage credits";

constexpr std::array<Section, 3> sections = {{
    {sessionHeading, "session", claudeSessionMinutes},
    {"Current week (all models)", "weekly", claudeWeekMinutes},
    {"Current week (Fable)", claudeModelWindowID, claudeWeekMinutes},
}};

/// More than any account has.
constexpr std::size_t mostOtherModels = 16;

constexpr std::string_view resetsPrefix = "Resets ";

using Lines = std::span<const std::string_view>;

bool isHeading(std::string_view line) {
    return line.starts_with("Current ") || line == creditsHeading || line == "Extra usage";
}

/// The up to five lines from `first` on, to the next heading.
Lines blockAt(const ClaudeScreen& screen, std::size_t first) {
    const Lines lines = screen.lines();
    const Lines block = lines.subspan(first, std::min<std::size_t>(5, lines.size() - first));
    const auto end = std::find_if(block.begin(), block.end(), isHeading);
    return block.first(static_cast<std::size_t>(end - block.begin()));
}

/// The block below the last line that is exactly `heading`.
Lines blockBelow(const ClaudeScreen& screen, std::string_view heading) {
    const Lines lines = screen.lines();
    const auto found = std::find(lines.rbegin(), lines.rend(), heading);
    return found == lines.rend()
               ? Lines()
               : blockAt(screen, static_cast<std::size_t>(std::distance(found, lines.rend())));
}

/// All lines, or those of the page drawn last where there are several.
Lines lastPage(const ClaudeScreen& screen) {
    const Lines lines = screen.lines();
    const auto last = std::find(lines.rbegin(), lines.rend(), sessionHeading);
    const bool isOnlyOne =
        last == lines.rend() || std::find(last + 1, lines.rend(), sessionHeading) == lines.rend();
    return isOnlyOne ? lines
                     : lines.subspan(static_cast<std::size_t>(std::distance(last, lines.rend())));
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

std::optional<UsageWindow> window(Lines block, std::string_view id, double minutes, Instant now) {
    const std::optional<double> used = usedPercent(block);
    if (!used) {
        return std::nullopt;
    }
    return UsageWindow{std::string(id), *used, minutes, resetTime(block, now)};
}

/// The window of the model in a heading such as "Current week (Opus)"; absent for other lines.
std::optional<std::string> otherModelWindowID(std::string_view line) {
    constexpr std::size_t longestHeading = 80;
    if (!line.starts_with(weekHeadingStart) || !line.ends_with(')') ||
        line.size() > longestHeading || line == sections[1].heading) {
        return std::nullopt;
    }
    line.remove_prefix(weekHeadingStart.size());
    line.remove_suffix(1);
    auto id = claudeModelWindowIDFor(line);
    return id == claudeModelWindowID ? std::nullopt : id;
}

/// Where the last block of each model but Fable begins, in the page's order.
std::vector<std::pair<std::string, std::size_t>> otherModelBlocks(const ClaudeScreen& screen) {
    std::vector<std::pair<std::string, std::size_t>> blocks;
    for (std::size_t line = screen.lines().size(); line > 0 && blocks.size() < mostOtherModels;
         --line) {
        auto id = otherModelWindowID(screen.lines()[line - 1]);
        const auto hasID = [&id](const auto& block) { return block.first == id; };
        if (id && std::none_of(blocks.begin(), blocks.end(), hasID)) {
            blocks.emplace_back(std::move(*id), line);
        }
    }
    std::reverse(blocks.begin(), blocks.end());
    return blocks;
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
    // Every ICU ships this zone; UTC is only a guard.
    static const TimeZone zone = TimeZone::named("Europe/Zurich").value_or(TimeZone::utc());
    return zone;
}

/// The fields of a text without a year. They are read in UTC, because the year that stands in for
/// the missing one changes its clocks on other days.
std::optional<CalendarDate> parsedFields(const std::string& text,
                                         std::initializer_list<std::string_view> formats) {
    for (const std::string_view format : formats) {
        if (const auto instant = parseDate(text, format, TimeZone::utc())) {
            return TimeZone::utc().calendarDate(*instant);
        }
    }
    return std::nullopt;
}

/// The span of "as of 1m ago" or "as of 1h 5m ago".
std::optional<Seconds> ageToldBy(std::string_view line) {
    static const Pattern phrase(R"(as of ((?:\d{1,6}\s?[dhms]\s?)+)ago)");
    static const Pattern part(R"((\d{1,6})\s?([dhms]))");
    const auto told = phrase.search(line);
    if (!told) {
        return std::nullopt;
    }
    const std::string_view spans = told->group(1);
    Seconds age{};
    for (auto match = part.search(spans); match;
         match = part.search(spans, match->position + match->whole().size())) {
        const char unit = match->group(2).front();
        const double seconds = unit == 'd' ? 86400 : unit == 'h' ? 3600 : unit == 'm' ? 60 : 1;
        age += Seconds(parseDecimal(match->group(1)).value_or(0) * seconds);
    }
    return age;
}

Instant instantOf(const CalendarDate& day, const CalendarDate& time) {
    return zurich().instant({day.year, day.month, day.day, time.hour, time.minute, 0});
}

} // namespace

AgentUsageSnapshot parseUsage(const ClaudeScreen& screen, Instant now) {
    AgentUsageSnapshot snapshot;
    snapshot.id = AgentProviderID::claude();
    const auto append = [&](Lines block, std::string_view id, double minutes) {
        if (auto found = window(block, id, minutes, now)) {
            snapshot.windows.push_back(std::move(*found));
        }
    };
    for (const Section& section : sections) {
        append(blockBelow(screen, section.heading), section.windowID, section.minutes);
    }
    for (const auto& [id, line] : otherModelBlocks(screen)) {
        append(blockAt(screen, line), id, claudeWeekMinutes);
    }
    if (snapshot.windows.empty()) {
        throw UsageProviderError(UsageProviderError::Kind::claudeNoQuotas);
    }
    // The status screen has given way to the usage screen by now.
    snapshot.accountLabel = accountLabel(screen.drawn());
    snapshot.plan = plan(screen.drawn());
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

std::optional<Staleness> staleness(const ClaudeScreen& screen) {
    // The notice that tells the age comes first, the mere waiting last.
    static const Pattern notices[] = {
        Pattern("Showing last-known usage"),
        Pattern("(?i)couldn['\u2019]t refresh|rate limited until|"
                "per-model breakdown unavailable|partial usage data"),
        Pattern("Refreshing usage"),
    };
    constexpr std::string_view errorMark = "failed: ";
    for (const Pattern& notice : notices) {
        for (std::string_view line : lastPage(screen)) {
            if (notice.matches(line)) {
                line.remove_prefix(line.starts_with(errorMark) ? errorMark.size() : 0);
                return Staleness{firstCharacters(line, 200), ageToldBy(line),
                                 &notice == std::prev(std::end(notices))};
            }
        }
    }
    return std::nullopt;
}

std::optional<std::string> hitLimit(const ClaudeScreen& screen) {
    static const Pattern pattern("You['\u2019]ve hit your (?:.{1,60}? )?limit");
    for (const std::string_view line : lastPage(screen)) {
        if (const auto match = pattern.search(line)) {
            return std::string(match->whole());
        }
    }
    return std::nullopt;
}

bool creditsAreOff(const ClaudeScreen& screen) {
    const Lines page = lastPage(screen);
    return std::any_of(page.begin(), page.end(), [](std::string_view line) {
        return line.starts_with("Usage credits are off");
    });
}

std::optional<std::string> refusedOption(const ClaudeScreen& screen) {
    static const Pattern pattern("unknown option '(--?[A-Za-z0-9][A-Za-z0-9-]{0,40})'");
    const auto match = pattern.search(screen.text());
    return match ? std::optional<std::string>(match->group(1)) : std::nullopt;
}

bool showsEndMarker(const ClaudeScreen& screen) {
    const Lines page = lastPage(screen);
    return std::any_of(page.begin(), page.end(), [](std::string_view line) {
        return line == creditsHeading || line.starts_with("What's contributing to your usage?") ||
               line.starts_with("What's contributing to your limits usage");
    });
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
    if (auto date = parsedFields(
            text, {"MMM d 'at' ha", "MMM d 'at' h:mma", "MMM d, ha", "MMM d, h:mma"})) {
        date->year = today.year;
        // A reset in early January, read in late December.
        if (instantOf(*date, *date) < now - oneDay) {
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
    // A number with more digits than a session can have milliseconds is not the script's.
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
