#include "probes/claude/ClaudeSessionInterpretation.h"

#include "probes/claude/ClaudeSessionScript.h"
#include "probes/claude/ClaudeUsageParser.h"
#include "probes/claude/ClaudeVersions.h"
#include "text/Pattern.h"
#include "text/TerminalText.h"

#include <algorithm>
#include <cmath>
#include <utility>

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

/// What came of a page by what it says of its figures' age.
void markStale(AgentUsageSnapshot& snapshot, const ClaudeUsageParser::Staleness& staleness,
               Instant now) {
    snapshot.source = SnapshotSource::stale;
    snapshot.updatedAt = now - staleness.age.value_or(claudeMemorySpan);
    snapshot.mayBeNewer = !staleness.age;
    snapshot.error = staleness.isRefreshing
                         ? UsageProviderError(UsageProviderError::Kind::claudeServiceUnavailable)
                         : UsageProviderError::claudeServiceRefused(staleness.phrase);
}

/// What the page tells beside the windows.
void noteWords(AgentUsageSnapshot& snapshot, const ClaudeScreen& screen) {
    if (auto limit = ClaudeUsageParser::hitLimit(screen)) {
        snapshot.notes.push_back({SnapshotNote::AgentSays{std::move(*limit)}});
    }
    if (ClaudeUsageParser::creditsAreOff(screen)) {
        snapshot.notes.push_back({SnapshotNote::AgentSays{"Usage credits are off"}});
    }
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
        if (auto option = ClaudeUsageParser::refusedOption(screen)) {
            throw UsageProviderError::claudeOptionRefused(std::move(*option));
        }
        throw UsageProviderError::claudeReadFailed(end.status, lastCharacters(screen.text(), 500));
    }
    const auto staleness = ClaudeUsageParser::staleness(screen);
    try {
        AgentUsageSnapshot snapshot = ClaudeUsageParser::parseUsage(screen, now);
        if (staleness) {
            markStale(snapshot, *staleness, now);
        }
        noteWords(snapshot, screen);
        snapshot.isIncomplete = incomplete || claudeEndMarkerIsMissing(screen, end);
        if (claudeEndMarkerIsMissing(screen, end)) {
            snapshot.notes.push_back({SnapshotNote::ClaudeEndMarkerMissing{
                ClaudeUsageParser::pageEndingVariant(screen)}});
        }
        return snapshot;
    } catch (const UsageProviderError&) {
        if (staleness && !staleness->isRefreshing) {
            throw UsageProviderError::claudeServiceRefused(staleness->phrase);
        }
        if (end.outputCapped) {
            throw UsageProviderError::claudeReadFailed(end.status, "too much output");
        }
        if (incomplete) {
            throw UsageProviderError::timeout("Claude");
        }
        throw;
    }
}

std::optional<std::string> claudeLaunchFailure(const ClaudeScreen& screen) {
    static const Pattern pattern(
        R"(^(?:spawn [^\r\n]*\s+)?([^\r\n]+)\s+while executing\s+"spawn )");
    const auto match = pattern.search(screen.text());
    return match ? std::optional(std::string(match->group(1))) : std::nullopt;
}

bool claudeEndMarkerIsMissing(const ClaudeScreen& screen, const ClaudeSessionEnd& end) {
    return end.status == Status::completeBySilence && !ClaudeUsageParser::showsEndMarker(screen) &&
           !ClaudeUsageParser::endsWithSpendLine(screen);
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
