#include "probes/codex/CodexReading.h"

#include "probes/codex/CodexMessages.h"
#include "text/Capitalization.h"

#include <algorithm>

namespace vellmark {

namespace {

void appendWindow(std::vector<UsageWindow>& windows, const char* id,
                  const std::optional<CodexWindow>& window) {
    if (window && window->usedPercent) {
        windows.push_back(
            {.id = id,
             .usedPercent = *window->usedPercent,
             .windowDurationMinutes = window->windowDurationMins,
             .resetsAt = window->resetsAt ? std::optional(instantFromUnixSeconds(*window->resetsAt))
                                          : std::nullopt});
    }
}

} // namespace

void CodexReading::take(CodexReply reply) {
    if (reply.id == CodexMessages::accountID && reply.email) {
        email_ = std::move(reply.email);
    } else if (reply.id == CodexMessages::rateLimitsID) {
        limits_ = std::move(reply);
    }
}

AgentUsageSnapshot CodexReading::snapshot(Instant now) const {
    if (!limits_ || !limits_->rateLimits) {
        throw UsageProviderError(UsageProviderError::Kind::codexNoQuotas);
    }
    const CodexRateLimits& limits = *limits_->rateLimits;
    AgentUsageSnapshot snapshot;
    snapshot.id = AgentProviderID::codex();
    snapshot.accountLabel = email_;
    if (limits.planType) {
        snapshot.plan = capitalized(*limits.planType);
    }
    appendWindow(snapshot.windows, "session", limits.primary);
    appendWindow(snapshot.windows, "weekly", limits.secondary);
    if (snapshot.windows.empty()) {
        throw UsageProviderError(UsageProviderError::Kind::codexNoWindows);
    }
    if (limits.hasCredits) {
        snapshot.credit = CreditInfo::available();
    }
    snapshot.source = SnapshotSource::live;
    snapshot.updatedAt = now;
    return snapshot;
}

AgentUsageSnapshot codexSnapshot(std::string_view output, Instant now) {
    CodexReading reading;
    while (!output.empty()) {
        const std::string_view line = output.substr(0, output.find('\n'));
        if (auto reply = parseCodexReply(line)) {
            reading.take(std::move(*reply));
        }
        output.remove_prefix(std::min(line.size() + 1, output.size()));
    }
    if (!reading.isComplete()) {
        throw UsageProviderError::codexReadFailed({});
    }
    return reading.snapshot(now);
}

} // namespace vellmark
