#pragma once

#include "model/AgentUsageSnapshot.h"
#include "probes/claude/ClaudeScreen.h"
#include "text/Instant.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vellmark {

/// The window that shows one model's share of the week; not every account has it.
inline constexpr std::string_view claudeModelWindowID = "fable-weekly";

/// Reads quota figures off Claude's screens. Pure functions; time linear in the screen.
///
/// The CLI redraws its page as it fills, so the last drawing of each part counts. Reset times are
/// read as Zurich time, whatever zone the screen names.
namespace ClaudeUsageParser {

/// Windows, account, plan and credits; `updatedAt` is `now`. Throws
/// UsageProviderError::Kind::claudeNoQuotas when there is no window.
AgentUsageSnapshot parseUsage(const ClaudeScreen& screen, Instant now);

/// The phrase by which the page says that it could not be loaded.
std::optional<std::string> pageError(const ClaudeScreen& screen);

/// True when the page ends with the credits' spend line, which then stands for its end marker.
bool endsWithSpendLine(const ClaudeScreen& screen);

/// Which text the page ended with, without its numbers, in at most 48 characters: tells page
/// layouts apart in the activity log.
std::string pageEndingVariant(const ClaudeScreen& screen);

/// The instant of a line such as "Resets Nov 24 at 9:30am (Europe/Zurich)" or "Resets 3pm".
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
