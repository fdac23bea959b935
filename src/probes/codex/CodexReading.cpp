#include "probes/codex/CodexReading.h"

#include "probes/codex/CodexMessages.h"
#include "text/Capitalization.h"
#include "text/Redaction.h"

#include <algorithm>
#include <map>
#include <utility>

namespace vellmark {

namespace {

using Kind = UsageProviderError::Kind;

std::optional<Instant> instantOf(const std::optional<double>& unixSeconds) {
    return unixSeconds ? std::optional(instantFromUnixSeconds(*unixSeconds)) : std::nullopt;
}

bool isTold(const std::optional<std::string>& text) {
    return text && !text->empty();
}

void appendWindow(std::vector<UsageWindow>& windows, std::string id,
                  const std::optional<CodexWindow>& window,
                  const std::optional<std::string>& label = std::nullopt) {
    if (window && window->usedPercent) {
        windows.push_back({.id = std::move(id),
                           .usedPercent = *window->usedPercent,
                           .windowDurationMinutes = window->windowDurationMins,
                           .resetsAt = instantOf(window->resetsAt),
                           .label = isTold(label) ? label : std::nullopt});
    }
}

void appendIndividualLimit(std::vector<UsageWindow>& windows,
                           const std::optional<CodexIndividualLimit>& limit) {
    if (limit && limit->remainingPercent) {
        windows.push_back({.id = "individual",
                           .usedPercent = 100 - *limit->remainingPercent,
                           .windowDurationMinutes = std::nullopt,
                           .resetsAt = instantOf(limit->resetsAt)});
    }
}

/// The limits besides the main one, sorted by identifier: the CLI sends them in a different order
/// each time.
void appendFurtherLimits(std::vector<UsageWindow>& windows, const CodexReply& reply) {
    std::map<std::string_view, const CodexRateLimits*> limits;
    for (const CodexRateLimits& limit : reply.limits) {
        limits.emplace(*limit.limitID, &limit);
    }
    limits.erase(reply.rateLimits->limitID.value_or("codex"));
    for (const auto& [id, limit] : limits) {
        const std::string prefix = "limit:" + std::string(id) + "|";
        appendWindow(windows, prefix + "primary", limit->primary, limit->limitName);
        appendWindow(windows, prefix + "secondary", limit->secondary, limit->limitName);
    }
}

/// Which limit has been reached. A spending limit does not keep the user from what the plan
/// includes, so it counts only where that is not said to be allowed.
std::optional<std::string> reachedType(const CodexReply& reply) {
    if (isTold(reply.rateLimits->reachedType)) {
        return reply.rateLimits->reachedType;
    }
    const bool stopsUser =
        reply.rateLimits->spendControlReached == true && reply.ordinaryUsageAllowed != true;
    return stopsUser ? std::optional<std::string>("spend_control_reached") : std::nullopt;
}

std::optional<std::int64_t> countOf(const std::optional<double>& number) {
    const bool isCount = number && *number >= 0 && *number < 0x1p53;
    return isCount ? std::optional(static_cast<std::int64_t>(*number)) : std::nullopt;
}

std::optional<UsageAllowance> allowanceOf(const CodexReply& reply) {
    UsageAllowance allowance{.ordinaryUsageAllowed = reply.ordinaryUsageAllowed,
                             .reachedType = reachedType(reply),
                             .bankedResets = countOf(reply.resetCredits.availableCount),
                             .bankedResetExpiresAt = instantOf(reply.resetCredits.nextExpiry)};
    return allowance == UsageAllowance{} ? std::nullopt : std::optional(std::move(allowance));
}

} // namespace

std::optional<Seconds> CodexReading::take(CodexReply reply) {
    if (reply.id == CodexMessages::accountID) {
        isAccountAnswered_ = true;
        if (reply.email) {
            email_ = std::move(reply.email);
        }
        if (reply.accountType) {
            accountType_ = std::move(reply.accountType);
        }
        return limits_ ? std::optional(Seconds(0)) : std::nullopt;
    }
    if (reply.id != CodexMessages::rateLimitsID) {
        return std::nullopt;
    }
    const bool isFirstResult = !limits_ && !reply.refusal;
    const bool isFirstAnswer = !isAnswered();
    if (reply.refusal) {
        refusal_ = std::move(reply.refusal);
    } else {
        limits_ = std::move(reply);
    }
    if (isFirstResult) {
        return isAccountAnswered_ ? Seconds(0) : patience_.account;
    }
    return isFirstAnswer ? std::optional(patience_.refusal) : std::nullopt;
}

AgentUsageSnapshot CodexReading::snapshot(Instant now, std::string_view homeDirectory) const {
    if (!limits_) {
        throw refusal(homeDirectory);
    }
    if (!limits_->rateLimits) {
        throw UsageProviderError(Kind::codexNoQuotas);
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
    appendIndividualLimit(snapshot.windows, limits.individualLimit);
    appendFurtherLimits(snapshot.windows, *limits_);
    if (snapshot.windows.empty()) {
        throw UsageProviderError(Kind::codexNoWindows);
    }
    if (limits.hasCredits == true) {
        snapshot.credit = CreditInfo::available();
    }
    snapshot.allowance = allowanceOf(*limits_);
    snapshot.source = SnapshotSource::live;
    snapshot.updatedAt = now;
    return snapshot;
}

UsageProviderError CodexReading::refusal(std::string_view homeDirectory) const {
    const std::string words = redactedLine(*refusal_, homeDirectory);
    const auto say = [&words](const char* phrase) {
        return words.find(phrase) != std::string::npos;
    };
    if (accountType_ == "apiKey" || (!accountType_ && say("chatgpt authentication required"))) {
        return UsageProviderError(Kind::codexAPIKey);
    }
    if (say("account authentication required")) {
        return UsageProviderError(Kind::codexNotLoggedIn);
    }
    return UsageProviderError::codexReadFailed(words);
}

AgentUsageSnapshot codexSnapshot(std::string_view output, Instant now,
                                 std::string_view homeDirectory) {
    CodexReading reading;
    while (!output.empty()) {
        const std::string_view line = output.substr(0, output.find('\n'));
        if (auto reply = parseCodexReply(line)) {
            reading.take(std::move(*reply));
        }
        output.remove_prefix(std::min(line.size() + 1, output.size()));
    }
    if (!reading.isAnswered()) {
        throw UsageProviderError::codexReadFailed({});
    }
    return reading.snapshot(now, homeDirectory);
}

} // namespace vellmark
