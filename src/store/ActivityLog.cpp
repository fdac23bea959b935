#include "store/ActivityLog.h"

#include "platform/Descriptor.h"
#include "platform/ReplacementFile.h"
#include "platform/SystemError.h"
#include "platform/WholeFile.h"
#include "store/FileLock.h"
#include "text/TerminalText.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <fcntl.h>
#include <fstream>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace vellmark {

namespace {

constexpr Seconds lockPatience{1};
constexpr Seconds day{86'400};
/// What may wait for room on the disk; beyond that the oldest lines go.
constexpr std::size_t mostWaiting = 1u << 20;
constexpr std::string_view programName = "vellmark";

constexpr std::array<std::pair<ActivityEntry::Level, std::string_view>, 3> levelNames = {{
    {ActivityEntry::Level::info, "info"},
    {ActivityEntry::Level::notice, "notice"},
    {ActivityEntry::Level::error, "error"},
}};

/// Reads lines back. Keeps the last hour's instant, since finding one out is what takes time.
class LineReader {
public:
    explicit LineReader(const TimeZone& zone) : zone_(zone) {}

    std::optional<ActivityEntry> entry(std::string_view line) {
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

    std::optional<Instant> instant(std::string_view line) {
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
        const std::string_view hour = line.substr(0, 13);
        if (hour != hourText_) {
            hourText_ = hour;
            hourBegin_ = zone_.instant({.year = number(0, 4),
                                        .month = number(5, 2),
                                        .day = number(8, 2),
                                        .hour = number(11, 2)});
        }
        return hourBegin_ + Seconds(number(14, 2) * 60 + number(17, 2));
    }

private:
    const TimeZone& zone_;
    std::string hourText_;
    Instant hourBegin_{};
};

template<typename Visit>
void forEachLine(std::string_view text, Visit&& visit) {
    while (!text.empty()) {
        const auto end = std::min(text.find('\n'), text.size());
        visit(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
}

/// Whether a power loss has torn the last line of a file of `size` bytes.
bool endsInsideLine(const Descriptor& file, off_t size) {
    char last = '\n';
    return size > 0 && ::pread(file.get(), &last, 1, size - 1) == 1 && last != '\n';
}

} // namespace

ActivityLog::ActivityLog(std::filesystem::path file)
    : file_(std::move(file)), lockFile_(std::filesystem::path(file_).replace_extension(".lock")) {}

std::string ActivityLog::line(const ActivityEntry& entry, const TimeZone& zone) {
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

std::error_code ActivityLog::append(ActivityEntry entry, const TimeZone& zone) {
    waiting_ += line(entry, zone) + "\n";
    if (waiting_.size() > mostWaiting) {
        waiting_.erase(0, waiting_.find('\n', waiting_.size() - mostWaiting) + 1);
    }
    return writeWaiting();
}

std::error_code ActivityLog::writeWaiting() {
    std::error_code error;
    const auto held = FileLock::acquire(lockFile_, lockPatience, error);
    if (!held) {
        // Whoever has the lock for so long is no disk error; the lines wait.
        return error == std::errc::resource_unavailable_try_again ? std::error_code() : error;
    }
    const Descriptor descriptor(
        ::open(file_.c_str(), O_RDWR | O_APPEND | O_CREAT | O_CLOEXEC, 0600));
    if (!descriptor.isOpen()) {
        return lastSystemError();
    }
    const off_t before = ::lseek(descriptor.get(), 0, SEEK_END);
    ::fchmod(descriptor.get(), 0600);
    const std::string lines = (endsInsideLine(descriptor, before) ? "\n" : "") + waiting_;
    const ssize_t count = ::write(descriptor.get(), lines.data(), lines.size());
    if (count < 0) {
        error = lastSystemError();
    } else if (count != static_cast<ssize_t>(lines.size())) {
        error = std::make_error_code(std::errc::no_space_on_device);
        (void)!::ftruncate(descriptor.get(), before); // no half lines
    } else {
        waiting_.clear();
    }
    return error;
}

std::error_code ActivityLog::trim(Instant now, const TimeZone& zone) {
    std::error_code error;
    const auto held = FileLock::acquire(lockFile_, lockPatience, error);
    if (!held) {
        return error == std::errc::resource_unavailable_try_again ? std::error_code() : error;
    }
    const auto text = readWholeFile(file_, error);
    if (!text) {
        return error == std::errc::no_such_file_or_directory ? std::error_code() : error;
    }
    const Instant since = now - daysKept * day;
    LineReader reader(zone);
    ReplacementFile replacement(file_, ReplacementFile::Name::fixed);
    bool keeps = false; // a line without a date shares the fate of the one before
    bool changed = false;
    forEachLine(*text, [&](std::string_view line) {
        if (const auto time = reader.instant(line)) {
            keeps = *time >= since;
        }
        changed |= !keeps;
        if (keeps) {
            replacement.write(std::string(line) + "\n");
        }
    });
    return changed ? replacement.commit() : std::error_code();
}

std::error_code ActivityLog::trimWhenDue(Instant now, const TimeZone& zone) {
    std::string firstLine;
    std::getline(std::ifstream(file_), firstLine);
    const auto oldest = LineReader(zone).instant(firstLine);
    const bool isDue = oldest && *oldest < now - (daysKept + 1) * day;
    return isDue ? trim(now, zone) : std::error_code();
}

std::vector<ActivityEntry> ActivityLog::entries(Instant since, const TimeZone& zone) const {
    std::error_code ignored; // a log that cannot be read shows what this run knows
    const std::string text = readWholeFile(file_, ignored).value_or("") + waiting_;
    std::vector<ActivityEntry> entries;
    LineReader reader(zone);
    forEachLine(text, [&](std::string_view line) {
        if (auto entry = reader.entry(line); entry && entry->time >= since) {
            entries.push_back(*std::move(entry));
        }
    });
    return entries;
}

} // namespace vellmark
