#pragma once

#include "presentation/NoticeSettings.h"
#include "store/UsageState.h"
#include "text/Instant.h"

#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <system_error>

namespace vellmark {

/// What is remembered of one window's present period. The window of the empty name stands for the
/// agent as a whole, whose period lasts until it works again.
struct PeriodMemory {
    /// The reset that ends it, where that is known.
    std::optional<Instant> endsAt;
    /// Of the last reading, as the time of it.
    double usedPercent = 0;
    Instant readAt{};
    /// What has been told in this period.
    std::set<NoticeKind> said;
    /// The user wants to hear no more of it until the next.
    bool isMuted = false;
    /// It was seen used up, now or in a period before, and nothing has confirmed that it is back.
    bool wasUsedUp = false;
    /// It is back, and that it began anew: still to be told.
    bool isBack = false;
    bool hasReset = false;

    bool operator==(const PeriodMemory&) const = default;
};

/// What is remembered of an agent beside its windows.
struct AgentMemory {
    /// How long its readings have failed so far, without the time that the system slept.
    Seconds unreadFor{0};
    bool saidUnread = false;
    /// The expiry of which the user has been told.
    std::optional<Instant> saidExpiry;

    bool operator==(const AgentMemory&) const = default;
};

/// What has been told, so that nothing is told twice, also after a restart. A value.
struct NoticeMemory {
    std::map<WindowKey, PeriodMemory> windows;
    std::map<AgentProviderID, AgentMemory> agents;

    /// Agents name windows as they like: of too many, those that were read last stay.
    void forgetOldest();

    /// What cannot be understood of `text` is left out: at worst something is told once more.
    static NoticeMemory parse(std::string_view text);
    std::string text() const;
    bool operator==(const NoticeMemory&) const = default;
};

/// "notices.json": the memory across starts, mode 0600. A file that is not there is an empty one;
/// `error` says why one that is cannot be read.
NoticeMemory readNoticeMemory(const std::filesystem::path& file, std::error_code& error);
std::error_code writeNoticeMemory(const std::filesystem::path& file, const NoticeMemory& memory);

} // namespace vellmark
