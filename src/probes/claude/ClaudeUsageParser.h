#pragma once

#include "model/AgentUsageSnapshot.h"
#include "probes/claude/ClaudeModelWindow.h"
#include "probes/claude/ClaudeScreen.h"
#include "text/Instant.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vellmark {

/// Reads quota figures off Claude's screens. Pure functions; time linear in the screen.
///
/// A capture may hold a page several times, one below the other; the last drawing of each part
/// counts. Reset times are read as Zurich time, whatever zone the screen names: the session is run
/// with that one.
namespace ClaudeUsageParser {

/// Windows, account, plan and credits, as if live; `updatedAt` is `now`. The windows of models
/// other than Fable come last, in the page's order. Throws
/// UsageProviderError::Kind::claudeNoQuotas when there is no window.
AgentUsageSnapshot parseUsage(const ClaudeScreen& screen, Instant now);

/// Why the figures on a page are not the service's current ones.
struct Staleness {
    /// What the page says, a line of it.
    std::string phrase;
    /// How old the figures are at least, where the page tells.
    std::optional<Seconds> age;
    /// The service is still being asked; otherwise it did not answer, or refused.
    bool isRefreshing = false;
    bool operator==(const Staleness&) const = default;
};
std::optional<Staleness> staleness(const ClaudeScreen& screen);

/// The page's own words where a limit is used up: "You've hit your session limit".
std::optional<std::string> hitLimit(const ClaudeScreen& screen);

/// True when the page says that usage credits are off.
bool creditsAreOff(const ClaudeScreen& screen);

/// The command-line option ("--restricted") that the CLI did not know and quit over: it is older
/// than the session's options.
std::optional<std::string> refusedOption(const ClaudeScreen& screen);

/// The phrase by which the page says that it could not be loaded.
std::optional<std::string> pageError(const ClaudeScreen& screen);

/// True when the page shows one of the parts that come after the windows.
bool showsEndMarker(const ClaudeScreen& screen);

/// True when the page ends with the credits' spend line, which then stands for its end marker.
bool endsWithSpendLine(const ClaudeScreen& screen);

/// Which text the page ended with, without its numbers, in at most 48 characters: tells page
/// layouts apart in the activity log.
std::string pageEndingVariant(const ClaudeScreen& screen);

/// The instant of a line such as "Resets Nov 24, 9:30am (Europe/Zurich)" or "Resets 3pm".
std::optional<Instant> resetDate(std::string_view line, Instant now);

/// Milliseconds from the script's start, as its last line reports them.
struct Stamps {
    std::int64_t prompt = 0;
    std::int64_t status = 0;
    std::int64_t blocks = 0;
    std::int64_t quiet = 0;
    bool operator==(const Stamps&) const = default;
};
std::optional<Stamps> stamps(const ClaudeScreen& screen);

} // namespace ClaudeUsageParser

} // namespace vellmark
