#pragma once

#include "model/AgentUsageSnapshot.h"
#include "platform/FileLock.h"
#include "text/Instant.h"

#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

namespace vellmark {

/// What a session of Claude Code has told of its windows.
struct SessionFigures {
    /// Names the session.
    std::string session;
    /// Changes with each answer of the service: the same figures again are no older for it.
    std::string turn;
    /// When these were first told.
    Instant toldAt{};
    std::vector<UsageWindow> windows;

    bool operator==(const SessionFigures&) const = default;
};

/// "status-line.json": the last figures of the sessions that have told some, for every program that
/// shows them. A session repeats them as long as it is open, so they are dated by when they
/// changed. Written by processes that must not wait: who finds the file locked leaves it be, and a
/// power loss may cost it.
class StatusLineReadings {
public:
    explicit StatusLineReadings(std::filesystem::path file);

    /// What cannot be understood counts as nothing.
    std::vector<SessionFigures> read() const;
    /// Keeps what a session tells now, unless it says nothing new. Sessions of long ago are
    /// forgotten.
    std::error_code keep(SessionFigures told, Instant now) const;

private:
    std::filesystem::path file_;
};

/// The newest figures of each window whose period is not over, with their times.
std::vector<UsageWindow> newestWindows(const std::vector<SessionFigures>& sessions, Instant now);

/// Puts figures in the place of older ones of the same window, which `readAt` dates where the
/// window does not, and adds windows that the snapshot does not have. Tells so in a note.
void takeNewerWindows(AgentUsageSnapshot& snapshot, const std::vector<UsageWindow>& windows,
                      Instant readAt);

} // namespace vellmark
