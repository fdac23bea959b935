#include "probes/antigravity/AntigravityReading.h"

#include "probes/antigravity/AntigravityOutput.h"
#include "text/Pattern.h"
#include "text/TerminalText.h"

#include <algorithm>
#include <initializer_list>

namespace vellmark {

namespace {

using Kind = UsageProviderError::Kind;

constexpr std::size_t shownCharacters = 300;

bool containsAny(const std::string& text, std::initializer_list<const char*> phrases) {
    return std::any_of(phrases.begin(), phrases.end(),
                       [&](const char* phrase) { return text.find(phrase) != std::string::npos; });
}

/// Why there are no quotas. The words go before the time limit: a login prompt hangs until it is
/// stopped.
UsageProviderError failure(const AntigravityRun& run, const std::string& text) {
    const std::string lower = lowercased(text);
    if (containsAny(lower, {"authentication required", "not logged into antigravity",
                            "authentication failed"})) {
        return UsageProviderError(Kind::antigravityNotLoggedIn);
    }
    if (containsAny(lower, {"not eligible", "ineligible"})) {
        return UsageProviderError(Kind::antigravityIneligible);
    }
    if (run.timedOut) {
        return UsageProviderError::timeout("Antigravity");
    }
    if (run.exitStatus == 0) {
        return UsageProviderError(Kind::antigravityNoQuotas);
    }
    return UsageProviderError::antigravityReadFailed(firstCharacters(text, shownCharacters));
}

std::optional<std::string> account(std::string_view log) {
    static const Pattern authenticated(
        R"(authenticated successfully as\s+([^\s@]+@[^\s@]+\.[^\s@]+))");
    const auto match = authenticated.search(log);
    return match ? std::optional(std::string(match->group(1))) : std::nullopt;
}

UsageWindow window(const AntigravityQuotaRow& row) {
    return {.id = "pool:" + row.pool + "|" + row.windowSlug,
            .usedPercent = 100 - row.remainingPercent,
            .windowDurationMinutes = row.windowMinutes,
            .resetsAt = row.resetsAt};
}

} // namespace

AgentUsageSnapshot antigravitySnapshot(const AntigravityRun& run, Instant now,
                                       const TimeZone& localZone) {
    const auto output = AntigravityOutput::read(run.output, localZone);
    if (output.rows.empty()) {
        throw failure(run, output.text);
    }
    AgentUsageSnapshot snapshot;
    snapshot.id = AgentProviderID::antigravity();
    snapshot.accountLabel = account(run.log);
    std::transform(output.rows.begin(), output.rows.end(), std::back_inserter(snapshot.windows),
                   window);
    snapshot.source = SnapshotSource::live;
    snapshot.updatedAt = now;
    return snapshot;
}

} // namespace vellmark
