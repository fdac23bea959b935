#pragma once

#include "platform/FileLock.h"
#include "platform/WaitingFile.h"
#include "store/ActivityEntry.h"
#include "text/Dates.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace vellmark {

/// "activity.log" on disk: one entry after the other, oldest first, mode 0600. An entry's line has
/// local date and time, level, agent ("vellmark" for the program itself) and text; see
/// ActivityLines. Entries are appended, by several processes if need be. Those that cannot be
/// written now wait on disk beside the file where another process keeps it locked, else in memory,
/// and are written with the next. Not for use by several threads.
///
/// Lines are dropped after 30 days, counted by what RecordedDays makes of the log's own dates. They
/// go to "activity.removed.log" first, stay there until a later day agrees, and come back if that
/// day finds that they were not old.
class ActivityLog {
public:
    static constexpr int daysKept = 30;

    explicit ActivityLog(std::filesystem::path file);

    std::error_code append(ActivityEntry entry, const TimeZone& zone);
    /// Drops what is older than 30 days.
    std::error_code trim(Instant now, const TimeZone& zone);
    /// The same, once the oldest line is a day older than that; cheap to ask at every start.
    std::error_code trimWhenDue(Instant now, const TimeZone& zone);
    /// The entries since `since`, oldest first; those that are not in the file are among them.
    /// What is no entry is left out. Where the file cannot be read, `error` says why.
    std::vector<ActivityEntry> entries(Instant since, const TimeZone& zone,
                                       std::error_code& error) const;
    /// The same; a log that cannot be read shows what this run knows.
    std::vector<ActivityEntry> entries(Instant since, const TimeZone& zone) const {
        std::error_code ignored;
        return entries(since, zone, ignored);
    }

    /// What was added since an earlier look, or everything where that cannot be told apart.
    struct News {
        bool startsAnew = true;
        std::vector<ActivityEntry> entries;
    };
    /// How far somebody has read.
    struct Place {
        unsigned long long file = 0;
        long long offset = 0;
        /// The bytes before the offset, by which a file that was replaced is recognised.
        std::string before;
    };
    /// Advances `place`. While entries wait to be written, everything is told anew.
    News news(Place& place, Instant since, const TimeZone& zone) const;

private:
    std::error_code writeWaiting();
    std::error_code write(std::string_view lines) const;
    std::filesystem::path removedFile() const;
    bool mayBringLinesBack(Instant now);

    std::filesystem::path file_;
    LockFile lock_;
    WaitingFile onDisk_;
    /// Lines that are not on disk yet, each with its end.
    std::string waiting_;
};

} // namespace vellmark
