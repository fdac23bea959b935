#include "probes/antigravity/AntigravityReading.h"

#include "text/Pattern.h"
#include "text/TerminalText.h"

#include <algorithm>
#include <initializer_list>
#include <iterator>
#include <optional>
#include <string_view>

namespace vellmark {

namespace {

using Kind = UsageProviderError::Kind;

constexpr std::size_t shownCharacters = 300;

bool containsAny(const std::string& text, std::initializer_list<const char*> phrases) {
    return std::any_of(phrases.begin(), phrases.end(),
                       [&](const char* phrase) { return text.find(phrase) != std::string::npos; });
}

/// Why there are no quotas. The output counts before the time limit: a login prompt hangs until it
/// is stopped. But a model's words prove nothing: it may write of any limit and any login.
UsageProviderError failure(const AntigravityRun& run) {
    const AntigravityOutput& output = run.output;
    if (output.tookTurn) {
        return UsageProviderError::antigravityReadingCosts(run.version);
    }
    const std::string lower = lowercased(output.text + "\n" + output.reason.value_or(""));
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
    if (run.outputCapped) {
        return UsageProviderError::antigravityReadFailed("too much output");
    }
    if (run.exitStatus == 0) {
        return UsageProviderError(Kind::antigravityNoQuotas);
    }
    return UsageProviderError::antigravityReadFailed(
        firstCharacters(output.reason.value_or(output.text), shownCharacters));
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

AgentUsageSnapshot antigravitySnapshot(const AntigravityRun& run, Instant now) {
    if (run.output.rows.empty()) {
        throw failure(run);
    }
    AgentUsageSnapshot snapshot;
    snapshot.id = AgentProviderID::antigravity();
    snapshot.accountLabel = account(run.log);
    std::transform(run.output.rows.begin(), run.output.rows.end(),
                   std::back_inserter(snapshot.windows), window);
    if (run.output.tookTurn) {
        snapshot.notes.push_back({SnapshotNote::ReadingCosts{}});
    }
    snapshot.source = SnapshotSource::live;
    snapshot.updatedAt = now;
    return snapshot;
}

} // namespace vellmark
