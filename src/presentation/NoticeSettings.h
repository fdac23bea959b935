#pragma once

#include "platform/Preferences.h"
#include "text/Localization.h"
#include "text/TimeZone.h"

#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace vellmark {

/// What is told of an agent without being asked, what matters most first.
enum class NoticeKind {
    usedUp,   ///< a window is used up, or the agent refuses to work
    runsOut,  ///< a window will be used up before its reset
    critical, ///< a window turned critical
    back,     ///< what was used up can be used again
    unread,   ///< the agent could not be read for an hour
    expires,  ///< something that can be used expires within a day
    reset,    ///< a window that was used has begun anew
};

/// Whether notices reach the user, as far as the system goes.
enum class NoticeDelivery {
    unknown, ///< nobody has looked yet
    works,
    unserved,  ///< nobody here shows notices
    forbidden, ///< the user has forbidden them in the system's settings
    unasked,   ///< the system asks before the first
    notHere,   ///< a demo or a sandbox keeps to itself
};

/// A time of the day as settings keep it, "07:30".
struct TimeOfDay {
    int minutes = 0; ///< since midnight

    /// Absent where `text` is none between "00:00" and "23:59".
    static std::optional<TimeOfDay> parse(std::string_view text);
    std::string text() const;
    /// As the user's clock writes it ("7:30 AM").
    std::string text(const Localization& words) const;
    auto operator<=>(const TimeOfDay&) const = default;
};

/// What the user wants to be told, and when not.
struct NoticeSettings {
    std::set<NoticeKind> kinds;
    /// Nothing is told from `from` to `until`, over midnight where that is earlier. Where both are
    /// the same there is no such time.
    struct QuietHours {
        TimeOfDay from;
        TimeOfDay until;
        bool operator==(const QuietHours&) const = default;
    };
    std::optional<QuietHours> quietHours;

    static NoticeSettings of(const Preferences& preferences);
    bool tells(NoticeKind kind) const { return kinds.contains(kind); }
    /// `zone` is the one that the user's clock shows.
    bool isQuiet(Instant now, const TimeZone& zone) const;
    bool operator==(const NoticeSettings&) const = default;
};

} // namespace vellmark
