#include "probes/claude/ClaudeSession.h"

#include "probes/claude/ClaudeSessionScript.h"
#include "probes/claude/ClaudeUsageParser.h"
#include "text/TerminalText.h"

#include <algorithm>
#include <cmath>

namespace vellmark {

namespace {

namespace Status = ClaudeSessionStatus;

bool meansIncomplete(std::int32_t status) {
    return status == Status::noPrompt || status == Status::noUsage ||
           status == Status::endedInUsage || status == Status::terminated;
}

bool meansComplete(std::int32_t status) {
    return status == Status::complete || status == Status::completeBySilence;
}

std::int64_t milliseconds(Seconds span) {
    return std::llround(span.count() * 1000);
}

std::int64_t atLeastZero(std::int64_t value) {
    return std::max<std::int64_t>(value, 0);
}

} // namespace

AgentUsageSnapshot interpretClaudeSession(const ClaudeScreen& screen, const ClaudeSessionEnd& end,
                                          Instant now) {
    if (end.status == Status::notLoggedIn) {
        throw UsageProviderError(UsageProviderError::Kind::claudeNotLoggedIn);
    }
    if (const auto phrase = ClaudeUsageParser::pageError(screen)) {
        throw UsageProviderError::claudePageError(*phrase);
    }
    const bool incomplete = end.cutOff || meansIncomplete(end.status);
    if (!incomplete && !meansComplete(end.status)) {
        throw UsageProviderError::claudeReadFailed(end.status, lastCharacters(screen.text(), 500));
    }
    try {
        AgentUsageSnapshot snapshot = ClaudeUsageParser::parseUsage(screen, now);
        if (claudeEndMarkerIsMissing(screen, end)) {
            snapshot.notes.push_back({SnapshotNote::ClaudeEndMarkerMissing{
                ClaudeUsageParser::pageEndingVariant(screen)}});
        }
        return snapshot;
    } catch (const UsageProviderError&) {
        if (incomplete) {
            throw UsageProviderError::timeout("Claude");
        }
        throw;
    }
}

bool claudeEndMarkerIsMissing(const ClaudeScreen& screen, const ClaudeSessionEnd& end) {
    return end.status == Status::completeBySilence && !ClaudeUsageParser::endsWithSpendLine(screen);
}

std::optional<SnapshotNote> claudeTimingNote(const ClaudeScreen& screen,
                                             const ClaudeSessionTimes& times) {
    const auto stamps = ClaudeUsageParser::stamps(screen);
    if (!stamps) {
        return std::nullopt;
    }
    SnapshotNote::ClaudeTiming timing;
    timing.waitMs = atLeastZero(milliseconds(times.readAt - times.run + times.launch));
    timing.startMs = stamps->prompt;
    timing.statusMs = atLeastZero(stamps->status - stamps->prompt);
    timing.usageMs = atLeastZero(stamps->blocks - stamps->status);
    timing.quietMs = atLeastZero(stamps->quiet - stamps->blocks);
    timing.endMs = atLeastZero(milliseconds(times.run) - stamps->quiet);
    return SnapshotNote{timing};
}

} // namespace vellmark
