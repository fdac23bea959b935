#pragma once

#include "store/ActivityEntry.h"
#include "text/Dates.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace vellmark {

/// "activity.log" on disk: one line for each entry, oldest first, mode 0600:
///
///     2026-11-20 14:31:20 notice codex: Trying again in 20 s after a time-out
///
/// that is local date and time, level, agent ("vellmark" for the program itself) and text. Lines
/// are appended, by several processes if need be, and dropped after 30 days. Entries that cannot be
/// written now are kept and written with the next. Not for use by several threads.
class ActivityLog {
public:
    static constexpr int daysKept = 30;

    explicit ActivityLog(std::filesystem::path file);

    std::error_code append(ActivityEntry entry, const TimeZone& zone);
    /// Drops what is older than 30 days.
    std::error_code trim(Instant now, const TimeZone& zone);
    /// The same, once the oldest line is a day older than that; cheap to ask at every start.
    std::error_code trimWhenDue(Instant now, const TimeZone& zone);
    /// The entries since `since`, oldest first; those that are not on disk are among them. Lines
    /// that are no entries are left out.
    std::vector<ActivityEntry> entries(Instant since, const TimeZone& zone) const;

    /// The entry as a line, without its end. Control characters and line breaks are gone.
    static std::string line(const ActivityEntry& entry, const TimeZone& zone);

private:
    std::error_code writeWaiting();

    std::filesystem::path file_;
    std::filesystem::path lockFile_;
    /// Lines that are not on disk yet, each with its end.
    std::string waiting_;
};

} // namespace vellmark
