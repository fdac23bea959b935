#pragma once

#include "model/AgentUsageSnapshot.h"
#include "probes/claude/ClaudeLoginCheck.h"
#include "probes/claude/ClaudeVersions.h"
#include "text/Instant.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vellmark {

// Claude Code's own query for its usage: one line of JSON on the standard input of
// `claude -p --input-format stream-json --output-format stream-json`, lines of JSON as the answer.
// It sends nothing to a model and leaves nothing behind. It stands in no documentation of the CLI;
// the form was found by trying versions 2.1.80 to 2.1.330, so whatever is unknown is passed over.
// All functions are pure and linear in their input.

/// Leaves out the user's own additions (hooks, servers, a status line), which a reading must not
/// set off.
std::vector<std::string> claudeQueryArguments();

/// The line to send, with its line feed.
std::string claudeQueryRequest(std::string_view requestID);

/// What was answered about the usage.
struct ClaudeUsageAnswer {
    /// "max", "pro"; absent without a subscription, with an API key and when not logged in.
    std::optional<std::string> subscription;
    /// False: nobody is logged in, so there are no limits to ask for.
    bool hasLogin = true;
    /// The CLI got figures, if only empty ones, from its service or from what it had kept.
    bool hasLimits = false;
    /// Why not, where it says so.
    std::optional<std::string> refusal;
    /// Session, week, and a week for every model that is named, in this order.
    std::vector<UsageWindow> windows;
    /// It has the rows that only the service's own answer contains.
    bool hasRows = false;
    /// Extra usage that is switched on: "$15.40 / $50.00 spent", and what is left of it.
    std::optional<CreditInfo> credit;
    std::optional<BalanceInfo> balance;
};

struct ClaudeQueryReply {
    enum class Kind {
        none,        ///< no line answers the request
        unsupported, ///< the CLI does not know this request
        failed,      ///< refused for another reason
        answered,
    };
    Kind kind = Kind::none;
    /// Of `failed`: the CLI's reason.
    std::string reason;
    ClaudeUsageAnswer answer;
};

/// Finds the answer to `requestID`, or the last one to any request where that is absent.
ClaudeQueryReply parseClaudeQueryReply(std::string_view output,
                                       std::optional<std::string_view> requestID);

/// Whether saved output is a query's rather than a screen's.
bool isClaudeQueryOutput(std::string_view output);

/// The reading that an answer amounts to. `stale`, with the reason, when a CLI of this `version`
/// gave figures that it had kept; it keeps them for up to an hour, so they are dated an hour back
/// and may be newer. Throws UsageProviderError where there is no figure.
AgentUsageSnapshot claudeQuerySnapshot(const ClaudeUsageAnswer& answer, const ClaudeLogin& login,
                                       const std::optional<VersionNumber>& version, Instant now);

} // namespace vellmark
