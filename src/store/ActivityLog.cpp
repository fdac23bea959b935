#include "store/ActivityLog.h"

#include "platform/Descriptor.h"
#include "platform/RegularFile.h"
#include "platform/ReplacementFile.h"
#include "platform/SystemError.h"
#include "platform/WholeFile.h"
#include "store/ActivityLines.h"
#include "store/RecordedDays.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>
#include <unordered_set>
#include <utility>

namespace vellmark {

namespace {

/// What may wait for room on the disk; beyond that the oldest lines go.
constexpr std::size_t mostWaiting = 1u << 20;
/// Years of entries; a longer file is no log of ours.
constexpr std::size_t longestLog = std::size_t{256} << 20;

/// What becomes of the lines of the log and of those that were removed before. The texts given must
/// outlive it.
class LogTrimming {
public:
    LogTrimming(const TimeZone& zone, std::string_view log, std::string_view removed)
        : reader_(zone), log_(log), before_(removed) {}

    Instant reference(Instant now) {
        RecordedDays days;
        for (const std::string_view text : {before_, log_}) {
            ActivityLines::forEach(text, [&](std::string_view line) {
                if (const auto time = reader_.instant(line)) {
                    days.add(*time);
                }
            });
        }
        return days.reference(now);
    }

    /// `forgets` when what was removed before may go for good.
    void decide(Instant since, bool forgets) {
        bool isYoung = false; // a line without a date shares the fate of the one before
        const auto isKept = [&](std::string_view line) {
            if (const auto time = reader_.instant(line)) {
                isYoung = *time >= since;
            }
            return isYoung;
        };
        std::vector<std::string_view> restored;
        ActivityLines::forEach(before_, [&](std::string_view line) {
            if (isKept(line)) {
                restored.push_back(line);
            } else if (!forgets) {
                append(removed_, line);
            }
            changes_ = changes_ || isYoung || forgets;
        });
        isYoung = false;
        std::string stays;
        ActivityLines::forEach(log_, [&](std::string_view line) {
            const bool keeps = isKept(line);
            append(keeps ? stays : removed_, line);
            changes_ = changes_ || !keeps;
        });
        removedMeanwhile_ = removed_;
        std::unordered_set<std::string_view> known; // a trimming that was interrupted
        if (!restored.empty()) {
            ActivityLines::forEach(stays, [&](std::string_view line) { known.insert(line); });
        }
        bool isKnown = false;
        for (const std::string_view line : restored) {
            append(removedMeanwhile_, line);
            isKnown = ActivityLines::continues(line) ? isKnown : known.contains(line);
            if (!isKnown) {
                append(kept_, line);
            }
        }
        kept_ += stays;
    }

    bool changesAnything() const { return changes_; }
    const std::string& kept() const { return kept_; }
    const std::string& removed() const { return removed_; }
    /// Until the log is written: with the lines that come back.
    const std::string& removedMeanwhile() const { return removedMeanwhile_; }

private:
    static void append(std::string& text, std::string_view line) { text.append(line).append("\n"); }

    ActivityLines::Reader reader_;
    std::string_view log_;
    std::string_view before_;
    std::string kept_;
    std::string removed_;
    std::string removedMeanwhile_;
    bool changes_ = false;
};

/// Without contents there is no file.
std::error_code replace(const std::filesystem::path& file, const std::string& contents) {
    if (contents.empty()) {
        return ::unlink(file.c_str()) == 0 || errno == ENOENT ? std::error_code()
                                                              : lastSystemError();
    }
    ReplacementFile replacement(file, ReplacementFile::Name::fixed,
                                ReplacementFile::Links::refused);
    replacement.write(contents);
    return replacement.commit();
}

/// What the lock file says: the day, by the clock, on which the log was trimmed last, and the one,
/// by the log's dates, on which lines were removed last.
struct TrimmingNote {
    std::int64_t trimmedOn = 0;
    std::optional<std::int64_t> removedOn;

    static TrimmingNote of(const FileLock& held) {
        TrimmingNote note;
        long long trimmed = 0;
        long long removed = 0;
        const int found = std::sscanf(held.note().c_str(), "%lld %lld", &trimmed, &removed);
        note.trimmedOn = found > 0 ? trimmed : 0;
        note.removedOn = found > 1 ? std::optional<std::int64_t>(removed) : std::nullopt;
        return note;
    }

    void write(const FileLock& held) const {
        held.setNote(std::to_string(trimmedOn) +
                     (removedOn ? " " + std::to_string(*removedOn) : std::string()));
    }
};

/// How many of the last bytes read are remembered, to recognise a file that another has replaced.
constexpr std::size_t placeMark = 80;

/// Whether `place` was found in this very file.
bool isAt(const ActivityLog::Place& place, const Descriptor& file, const struct stat& facts) {
    const std::string& before = place.before;
    if (before.empty() || place.file != facts.st_ino || place.offset > facts.st_size) {
        return false;
    }
    std::string found(before.size(), '\0');
    const auto from = static_cast<off_t>(place.offset) - static_cast<off_t>(before.size());
    return ::pread(file.get(), found.data(), found.size(), from) ==
               static_cast<ssize_t>(found.size()) &&
           found == before;
}

/// Whether a power loss has torn the last line of a file of `size` bytes.
bool endsInsideLine(const Descriptor& file, off_t size) {
    char last = '\n';
    return size > 0 && ::pread(file.get(), &last, 1, size - 1) == 1 && last != '\n';
}

} // namespace

ActivityLog::ActivityLog(std::filesystem::path file)
    : file_(std::move(file)), lock_(std::filesystem::path(file_).replace_extension(".lock")),
      onDisk_(file_) {}

std::error_code ActivityLog::append(ActivityEntry entry, const TimeZone& zone) {
    waiting_ += ActivityLines::record(entry, zone);
    if (waiting_.size() > mostWaiting) {
        auto begin = waiting_.find('\n', waiting_.size() - mostWaiting) + 1;
        if (ActivityLines::continues(std::string_view(waiting_).substr(begin))) {
            begin = waiting_.find('\n', begin) + 1;
        }
        waiting_.erase(0, begin);
    }
    return writeWaiting();
}

std::error_code ActivityLog::writeWaiting() {
    std::error_code error;
    const auto held = lock_.acquire(error);
    if (!held) {
        if (error != std::errc::resource_unavailable_try_again) {
            return error;
        }
        // A lock that somebody else holds this long is not a disk error; the lines wait.
        if (!onDisk_.add(waiting_)) {
            waiting_.clear();
        }
        return {};
    }
    onDisk_.takeOver([&](std::string_view lines) { return !(error = write(lines)); });
    if (!error && !(error = write(waiting_))) {
        waiting_.clear();
    }
    return error;
}

std::error_code ActivityLog::write(std::string_view lines) const {
    std::error_code error;
    const Descriptor file = openRegularFile(file_, O_RDWR | O_APPEND | O_CREAT, error);
    if (!file.isOpen()) {
        return error;
    }
    const off_t before = ::lseek(file.get(), 0, SEEK_END);
    const std::string bytes = (endsInsideLine(file, before) ? "\n" : "") + std::string(lines);
    const ssize_t count = ::write(file.get(), bytes.data(), bytes.size());
    if (count < 0) {
        return lastSystemError();
    }
    if (count != static_cast<ssize_t>(bytes.size())) {
        (void)!::ftruncate(file.get(), before); // no half lines
        return std::make_error_code(std::errc::no_space_on_device);
    }
    return {};
}

std::filesystem::path ActivityLog::removedFile() const {
    return std::filesystem::path(file_).replace_extension(".removed.log");
}

std::error_code ActivityLog::trim(Instant now, const TimeZone& zone) {
    std::error_code error;
    const auto held = lock_.acquire(error);
    if (!held) {
        return error == std::errc::resource_unavailable_try_again ? std::error_code() : error;
    }
    if (!openRegularFile(file_, O_RDWR, error).isOpen()) {
        return error == std::errc::no_such_file_or_directory ? std::error_code() : error;
    }
    const auto text = readRegularFile(file_, longestLog, error);
    if (!text) {
        return error;
    }
    const std::string removed =
        readRegularFile(removedFile(), longestLog, error).value_or(std::string());
    if (error && error != std::errc::no_such_file_or_directory) {
        return error;
    }
    LogTrimming trimming(zone, *text, removed);
    const Instant reference = trimming.reference(now);
    const std::int64_t today = dayNumber(reference);
    TrimmingNote note = TrimmingNote::of(*held);
    trimming.decide(reference - daysKept * oneDay, note.removedOn && today > *note.removedOn);
    note.trimmedOn = dayNumber(now);
    if (trimming.changesAnything() || !note.removedOn) {
        note.removedOn = today;
    }
    note.write(*held);
    if (!trimming.changesAnything()) {
        return {};
    }
    // At any moment a line is in one of the two files at least.
    if ((error = replace(removedFile(), trimming.removedMeanwhile())) ||
        (error = replace(file_, trimming.kept()))) {
        return error;
    }
    return replace(removedFile(), trimming.removed());
}

std::error_code ActivityLog::trimWhenDue(Instant now, const TimeZone& zone) {
    std::error_code error;
    const Descriptor file = openRegularFile(file_, O_RDONLY, error);
    if (!file.isOpen()) {
        return error == std::errc::no_such_file_or_directory ? std::error_code() : error;
    }
    const auto firstLine = readToEnd(file.get(), error, 64);
    const auto oldest = ActivityLines::Reader(zone).instant(firstLine.value_or(std::string()));
    const bool isOld = oldest && *oldest < now - (daysKept + 1) * oneDay;
    return isOld || mayBringLinesBack(now) ? trim(now, zone) : std::error_code();
}

/// Once a day while there are removed lines.
bool ActivityLog::mayBringLinesBack(Instant now) {
    std::error_code ignored;
    if (!std::filesystem::exists(std::filesystem::symlink_status(removedFile(), ignored))) {
        return false;
    }
    const auto held = lock_.acquire(ignored);
    return held && TrimmingNote::of(*held).trimmedOn != dayNumber(now);
}

std::vector<ActivityEntry> ActivityLog::entries(Instant since, const TimeZone& zone,
                                                std::error_code& error) const {
    const std::string text = readRegularFile(file_, longestLog, error).value_or(std::string());
    if (error == std::errc::no_such_file_or_directory) {
        error.clear();
    }
    const std::string elsewhere = onDisk_.lines();
    std::vector<ActivityEntry> entries;
    ActivityLines::Reader reader(zone);
    for (const std::string_view part :
         {std::string_view(text), std::string_view(elsewhere), std::string_view(waiting_)}) {
        reader.read(part, since, entries);
    }
    if (!elsewhere.empty()) { // other lines were written since
        std::ranges::stable_sort(entries, {}, &ActivityEntry::time);
    }
    return entries;
}

ActivityLog::News ActivityLog::news(Place& place, Instant since, const TimeZone& zone) const {
    News news;
    std::error_code error;
    if (!waiting_.empty() || !onDisk_.lines().empty()) {
        place = {};
        news.entries = entries(since, zone, error);
        return news;
    }
    const Descriptor file = openRegularFile(file_, O_RDONLY, error);
    struct stat facts {};
    if (!file.isOpen() || ::fstat(file.get(), &facts) != 0) {
        place = {};
        return news;
    }
    news.startsAnew = !isAt(place, file, facts);
    if (news.startsAnew) {
        place = {.file = facts.st_ino};
    }
    if (facts.st_size > static_cast<off_t>(longestLog) ||
        ::lseek(file.get(), place.offset, SEEK_SET) < 0) {
        return news;
    }
    std::string added = readToEnd(file.get(), error, longestLog).value_or(std::string());
    added.resize(added.rfind('\n') + 1); // a line may be on its way
    ActivityLines::Reader(zone).read(added, since, news.entries);
    place.offset += static_cast<long long>(added.size());
    place.before.append(added);
    place.before.erase(0, place.before.size() - std::min(place.before.size(), placeMark));
    return news;
}

} // namespace vellmark
