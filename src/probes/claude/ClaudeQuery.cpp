#include "probes/claude/ClaudeQuery.h"

#include "probes/claude/ClaudeMembers.h"
#include "probes/claude/ClaudeModelWindow.h"
#include "text/BoundedJSON.h"
#include "text/Capitalization.h"
#include "text/Dates.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cstdio>

namespace vellmark {

namespace {

using Error = UsageProviderError;
using ReplyKind = ClaudeQueryReply::Kind;

/// More models than this are a flood, not an answer.
constexpr std::size_t mostModelWindows = 50;

/// Every member that is read from an answer; the rest of a line is skipped without being built.
constexpr std::array<std::string_view, 27> answerMembers = {
    "type",
    "response",
    "subtype",
    "request_id",
    "error",
    "message",
    "subscription_type",
    "rate_limits_available",
    "rate_limits",
    "five_hour",
    "seven_day",
    "seven_day_opus",
    "seven_day_sonnet",
    "utilization",
    "resets_at",
    "limits",
    "kind",
    "percent",
    "scope",
    "model",
    "display_name",
    "model_scoped",
    "extra_usage",
    "is_enabled",
    "monthly_limit",
    "used_credits",
    "currency",
};

std::optional<Instant> instant(const JSON& value) {
    const auto written = textOf(value);
    if (!written) {
        return std::nullopt;
    }
    const auto precise = parseISO8601(*written, true);
    return precise ? precise : parseISO8601(*written, false);
}

bool holds(const std::vector<UsageWindow>& windows, const std::string& id) {
    return std::ranges::find(windows, id, &UsageWindow::id) != windows.end();
}

/// `share`: the member that holds the percentage.
void addWindow(std::vector<UsageWindow>& windows, std::string id, const JSON& source,
               const char* share, double minutes, std::optional<std::string> label = {}) {
    const auto used = numberOf(memberOf(source, share));
    if (used && !holds(windows, id)) {
        windows.push_back({std::move(id), *used, minutes, instant(memberOf(source, "resets_at")),
                           std::move(label)});
    }
}

void addModelWindow(std::vector<UsageWindow>& windows, const std::optional<std::string>& model,
                    const JSON& source, const char* share) {
    const auto id = model ? claudeModelWindowIDFor(*model) : std::nullopt;
    if (id && windows.size() < mostModelWindows) {
        addWindow(windows, *id, source, share, claudeWeekMinutes, model);
    }
}

/// An answer gives the same windows in several places, rounded in some, and not every version has
/// every place: the most exact one counts.
std::vector<UsageWindow> windowsOf(const JSON& limits) {
    const JSON& rows = memberOf(limits, "limits");
    std::vector<UsageWindow> windows;
    addWindow(windows, "session", memberOf(limits, "five_hour"), "utilization",
              claudeSessionMinutes);
    for (const JSON& row : rows) {
        if (memberOf(row, "kind") == "session") {
            addWindow(windows, "session", row, "percent", claudeSessionMinutes);
        }
    }
    addWindow(windows, "weekly", memberOf(limits, "seven_day"), "utilization", claudeWeekMinutes);
    for (const JSON& row : rows) {
        if (memberOf(row, "kind") == "weekly_all") {
            addWindow(windows, "weekly", row, "percent", claudeWeekMinutes);
        }
    }
    for (const JSON& scoped : memberOf(limits, "model_scoped")) {
        addModelWindow(windows, textOf(memberOf(scoped, "display_name")), scoped, "utilization");
    }
    for (const JSON& row : rows) {
        if (memberOf(row, "kind") == "weekly_scoped") {
            const JSON& model = memberOf(memberOf(row, "scope"), "model");
            addModelWindow(windows, textOf(memberOf(model, "display_name")), row, "percent");
        }
    }
    addModelWindow(windows, "Opus", memberOf(limits, "seven_day_opus"), "utilization");
    addModelWindow(windows, "Sonnet", memberOf(limits, "seven_day_sonnet"), "utilization");
    return windows;
}

/// As the CLI writes it on its own screens.
std::string money(double cents, const std::string& currency) {
    std::array<char, 400> digits{};
    std::snprintf(digits.data(), digits.size(), "%.2f", cents / 100);
    return currency == "USD" ? "$" + std::string(digits.data())
                             : std::string(digits.data()) + " " + currency;
}

void readExtraUsage(const JSON& extra, ClaudeUsageAnswer& answer) {
    const auto spent = numberOf(memberOf(extra, "used_credits"));
    if (memberOf(extra, "is_enabled") != true || !spent) {
        return;
    }
    const std::string currency = textOf(memberOf(extra, "currency")).value_or("USD");
    const auto limit = numberOf(memberOf(extra, "monthly_limit"));
    answer.credit = CreditInfo::line(money(*spent, currency) +
                                     (limit ? " / " + money(*limit, currency) : "") + " spent");
    if (limit) {
        answer.balance = BalanceInfo{.id = extraUsageBalanceID,
                                     .amount = std::max(*limit - *spent, 0.0) / 100,
                                     .currencyCode = currency,
                                     .limit = *limit / 100};
    }
}

ClaudeUsageAnswer usageAnswer(const JSON& response) {
    ClaudeUsageAnswer answer;
    answer.subscription = textOf(memberOf(response, "subscription_type"));
    answer.hasLogin = memberOf(response, "rate_limits_available") != false;
    const JSON& limits = memberOf(response, "rate_limits");
    const JSON& error = memberOf(limits, "error");
    if (!error.is_null()) {
        answer.refusal =
            textOf(error.is_object() ? memberOf(error, "message") : error).value_or("");
    } else if (limits.is_object()) {
        answer.hasLimits = true;
        answer.hasRows = memberOf(limits, "limits").is_array();
        answer.windows = windowsOf(limits);
        readExtraUsage(memberOf(limits, "extra_usage"), answer);
    }
    return answer;
}

/// What a line says about the request; `none` when it is about something else.
ClaudeQueryReply replyOf(std::string_view line, std::optional<std::string_view> requestID) {
    try {
        const JSON message = parsedJSON(line, answerMembers);
        const JSON& response = memberOf(message, "response");
        if (memberOf(message, "type") != "control_response" ||
            (requestID && memberOf(response, "request_id") != *requestID)) {
            return {};
        }
        if (memberOf(response, "subtype") == "error") {
            const std::string reason = textOf(memberOf(response, "error")).value_or("");
            const bool isUnknown = reason.find("Unsupported control request") != std::string::npos;
            return {.kind = isUnknown ? ReplyKind::unsupported : ReplyKind::failed,
                    .reason = reason,
                    .answer = {}};
        }
        const JSON& usage = memberOf(response, "response");
        if (!usage.is_object()) {
            return {};
        }
        return {.kind = ReplyKind::answered, .reason = {}, .answer = usageAnswer(usage)};
    } catch (const JSONDecodingError&) {
        return {};
    }
}

/// Calls `take` with every line that may hold an answer, until it returns true.
template<typename Take>
void forEachAnswerLine(std::string_view output, Take take) {
    while (!output.empty()) {
        const std::string_view line = output.substr(0, output.find('\n'));
        output.remove_prefix(std::min(line.size() + 1, output.size()));
        if (line.starts_with('{') && line.find("\"control_response\"") != std::string_view::npos &&
            take(line)) {
            return;
        }
    }
}

Error reasonWithoutFigures(const ClaudeUsageAnswer& answer, const ClaudeLogin& login) {
    if (login.usesAPIKey) {
        return Error(Error::Kind::claudeAPIKey);
    }
    if (!answer.hasLogin) {
        return Error(login.isLoggedIn == true ? Error::Kind::claudeNoSubscription
                                              : Error::Kind::claudeNotLoggedIn);
    }
    if (answer.refusal) {
        return answer.refusal->empty() ? Error(Error::Kind::claudeServiceUnavailable)
                                       : Error::claudeServiceRefused(*answer.refusal);
    }
    if (!answer.hasLimits) {
        return Error(Error::Kind::claudeServiceUnavailable);
    }
    return Error(answer.subscription ? Error::Kind::claudeNoQuotas
                                     : Error::Kind::claudeNoSubscription);
}

} // namespace

std::vector<std::string> claudeQueryArguments() {
    return {"-p",          "--input-format", "stream-json", "--output-format",
            "stream-json", "--verbose",      "--safe-mode"};
}

std::string claudeQueryRequest(std::string_view requestID) {
    JSON request;
    request["type"] = "control_request";
    request["request_id"] = requestID;
    request["request"] = {{"subtype", "get_usage"}, {"skip_behaviors", true}};
    return serialized(request, -1) + "\n";
}

ClaudeQueryReply parseClaudeQueryReply(std::string_view output,
                                       std::optional<std::string_view> requestID) {
    ClaudeQueryReply reply;
    forEachAnswerLine(output, [&](std::string_view line) {
        ClaudeQueryReply found = replyOf(line, requestID);
        if (found.kind != ReplyKind::none) {
            reply = std::move(found);
        }
        return requestID && reply.kind != ReplyKind::none;
    });
    return reply;
}

bool isClaudeQueryOutput(std::string_view output) {
    bool found = false;
    forEachAnswerLine(output, [&](std::string_view) { return found = true; });
    return found;
}

AgentUsageSnapshot claudeQuerySnapshot(const ClaudeUsageAnswer& answer, const ClaudeLogin& login,
                                       const std::optional<VersionNumber>& version, Instant now) {
    if (answer.windows.empty()) {
        throw reasonWithoutFigures(answer, login);
    }
    AgentUsageSnapshot snapshot;
    snapshot.id = AgentProviderID::claude();
    snapshot.accountLabel = login.email;
    snapshot.plan = login.plan;
    if (!snapshot.plan && answer.subscription) {
        snapshot.plan = capitalized(*answer.subscription);
    }
    snapshot.windows = answer.windows;
    snapshot.credit = answer.credit;
    if (answer.balance) {
        snapshot.balances.push_back(*answer.balance);
    }
    snapshot.source = SnapshotSource::live;
    snapshot.updatedAt = now;
    const bool tellsAge = !version || !(*version < claudeToldAgeVersion);
    if (tellsAge && !answer.hasRows) {
        snapshot.source = SnapshotSource::stale;
        snapshot.updatedAt = now - claudeMemorySpan;
        snapshot.mayBeNewer = true;
        snapshot.error = Error(Error::Kind::claudeServiceUnavailable);
    } else if (!tellsAge && claudeQueryVersion < *version) {
        snapshot.notes.push_back({SnapshotNote::AgeNotTold{version->text()}});
    }
    return snapshot;
}

} // namespace vellmark
