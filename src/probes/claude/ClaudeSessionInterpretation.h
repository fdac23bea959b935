#pragma once

#include "model/AgentUsageSnapshot.h"
#include "probes/claude/ClaudeScreen.h"
#include "text/Instant.h"

#include <cstdint>
#include <optional>
#include <string>

namespace vellmark {

/// How the scripted session ended.
struct ClaudeSessionEnd {
    /// The interpreter's exit status (ClaudeSessionStatus).
    std::int32_t status = 0;
    /// It ran out of time or was ended by a signal.
    bool cutOff = false;
    /// It was stopped because it wrote more than is recorded.
    bool outputCapped = false;
};

/// What a session showed, as a snapshot with `updatedAt` set to `now`, or the reason why there is
/// none, thrown as UsageProviderError. Pure.
///
/// Figures that the page itself does not call the service's of now are `stale`; `updatedAt` is then
/// as long ago as the page tells, or as the CLI keeps figures at most. A capture that was cut off
/// but holds a window is a good reading; one without is a time-out, `claudeReadFailed` where there
/// was too much of it, or `claudePageError` where the page says that the service refused. A
/// complete capture without a window is `claudeNoQuotas`: the caller may have more to say.
AgentUsageSnapshot interpretClaudeSession(const ClaudeScreen& screen, const ClaudeSessionEnd& end,
                                          Instant now);

/// Why the interpreter could not start the CLI, in its words; absent when it could.
std::optional<std::string> claudeLaunchFailure(const ClaudeScreen& screen);

/// True when the page counted as complete by silence alone and shows no known ending either.
bool claudeEndMarkerIsMissing(const ClaudeScreen& screen, const ClaudeSessionEnd& end);

/// Measured around the session; all from the same clock.
struct ClaudeSessionTimes {
    /// From the fetch's start until the capture was about to be read.
    Seconds readAt{};
    /// The interpreter's run, and the part of it until it was registered.
    Seconds run{};
    Seconds launch{};
};

/// Where the time went; absent when the script did not reach its end.
std::optional<SnapshotNote> claudeTimingNote(const ClaudeScreen& screen,
                                             const ClaudeSessionTimes& times);

} // namespace vellmark
