#include "store/ActivityLines.h"

#include "text/TerminalText.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <utility>

namespace vellmark::ActivityLines {

namespace {

constexpr std::string_view programName = "vellmark";

constexpr std::array<std::pair<ActivityEntry::Level, std::string_view>, 3> levelNames = {{
    {ActivityEntry::Level::info, "info"},
    {ActivityEntry::Level::notice, "notice"},
    {ActivityEntry::Level::error, "error"},
}};

/// "<TAB>key language arguments"; a line of another form is left out.
std::optional<ActivityMessage> message(std::string_view line) {
    line.remove_prefix(1);
    const auto keyEnd = line.find(' ');
    const auto languageEnd = line.find(' ', keyEnd + 1);
    if (keyEnd == 0 || keyEnd == std::string_view::npos || languageEnd == std::string_view::npos) {
        return std::nullopt;
    }
    return ActivityMessage{.key = std::string(line.substr(0, keyEnd)),
                           .language =
                               std::string(line.substr(keyEnd + 1, languageEnd - keyEnd - 1)),
                           .arguments = std::string(line.substr(languageEnd + 1))};
}

} // namespace

std::string text(const ActivityEntry& entry, const TimeZone& zone) {
    const CalendarDate date = zone.calendarDate(entry.time);
    std::array<char, 32> stamp{};
    std::snprintf(stamp.data(), stamp.size(), "%04d-%02d-%02d %02d:%02d:%02d", date.year,
                  date.month, date.day, date.hour, date.minute, date.second);
    const auto level =
        std::ranges::find(levelNames, entry.level, [](const auto& pair) { return pair.first; });
    std::string line = stamp.data();
    line += " ";
    line += level->second;
    line += " " + (entry.agent ? singleLine(entry.agent->rawValue) : std::string(programName));
    line += ": " + singleLine(entry.text);
    return line;
}

std::string record(const ActivityEntry& entry, const TimeZone& zone) {
    std::string lines = text(entry, zone) + "\n";
    if (const ActivityMessage& message = entry.message; !message.key.empty()) {
        lines += "\t" + message.key + " " + message.language + " " + singleLine(message.arguments) +
                 "\n";
    }
    return lines;
}

std::optional<Instant> Reader::instant(std::string_view line) {
    constexpr std::string_view form = "0000-00-00 00:00:00";
    if (line.size() < form.size()) {
        return std::nullopt;
    }
    for (std::size_t index = 0; index < form.size(); ++index) {
        const bool digit = line[index] >= '0' && line[index] <= '9';
        if (form[index] == '0' ? !digit : line[index] != form[index]) {
            return std::nullopt;
        }
    }
    const auto number = [&](std::size_t from, std::size_t count) {
        int value = 0;
        for (const char digit : line.substr(from, count)) {
            value = value * 10 + (digit - '0');
        }
        return value;
    };
    const int minute = number(14, 2);
    const int second = number(17, 2);
    if (minute > 59 || second > 59) {
        return std::nullopt;
    }
    const std::string_view hourText = line.substr(0, 13);
    if (hourText != hourText_) {
        const CalendarDate date{.year = number(0, 4),
                                .month = number(5, 2),
                                .day = number(8, 2),
                                .hour = number(11, 2)};
        // A date that no calendar has would be taken for another one.
        const std::chrono::year_month_day day(std::chrono::year(date.year),
                                              std::chrono::month(unsigned(date.month)),
                                              std::chrono::day(unsigned(date.day)));
        if (!day.ok() || date.hour > 23) {
            return std::nullopt;
        }
        hourBegin_ = zone_.instant(date);
        hourText_ = hourText;
    }
    return hourBegin_ + Seconds(minute * 60 + second);
}

std::optional<ActivityEntry> Reader::entry(std::string_view line) {
    // "yyyy-MM-dd HH:mm:ss level subject: text"
    const auto time = instant(line);
    if (!time) {
        return std::nullopt;
    }
    ActivityEntry entry;
    entry.time = *time;
    line.remove_prefix(std::min<std::size_t>(20, line.size()));
    const auto levelEnd = line.find(' ');
    const auto subjectEnd = line.find(": ", levelEnd);
    const auto level = std::ranges::find(levelNames, line.substr(0, levelEnd),
                                         [](const auto& pair) { return pair.second; });
    if (subjectEnd == std::string_view::npos || level == levelNames.end()) {
        return std::nullopt;
    }
    entry.level = level->first;
    const auto subject = line.substr(levelEnd + 1, subjectEnd - levelEnd - 1);
    if (subject != programName) {
        entry.agent = AgentProviderID(std::string(subject));
    }
    entry.text = line.substr(subjectEnd + 2);
    return entry;
}

void Reader::read(std::string_view text, Instant since, std::vector<ActivityEntry>& entries) {
    bool hasEntry = false; // the line before was one
    forEach(text, [&](std::string_view line) {
        if (continues(line)) {
            if (auto found = message(line); found && std::exchange(hasEntry, false)) {
                entries.back().message = *std::move(found);
            }
            return;
        }
        auto found = entry(line);
        hasEntry = found && found->time >= since;
        if (hasEntry) {
            entries.push_back(*std::move(found));
        }
    });
}

} // namespace vellmark::ActivityLines
