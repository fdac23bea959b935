#pragma once

#include "model/AgentUsageSnapshot.h"
#include "probes/codex/CodexReply.h"
#include "text/Instant.h"

#include <optional>
#include <string>
#include <string_view>

namespace vellmark {

/// How long the rest of a conversation is worth waiting for.
struct CodexPatience {
    /// For the account, once the rate limits are there.
    Seconds account{0.5};
    /// For the rate limits, once they have been refused.
    Seconds refusal{2};
};

/// What the replies of one conversation have told so far.
class CodexReading {
public:
    explicit CodexReading(CodexPatience patience = {}) : patience_(patience) {}

    /// How long the rest is worth waiting for from now on, where the reply settles that; nothing
    /// once all has been told.
    std::optional<Seconds> take(CodexReply reply);

    /// The request for the rate limits has been answered, by figures or by a refusal.
    bool isAnswered() const { return limits_ || refusal_; }

    /// Of an answered reading. Throws UsageProviderError: why there are no figures, in the
    /// service's words (redacted, by `homeDirectory` too) where no case says it.
    AgentUsageSnapshot snapshot(Instant now, std::string_view homeDirectory) const;

private:
    UsageProviderError refusal(std::string_view homeDirectory) const;

    CodexPatience patience_;
    bool isAccountAnswered_ = false;
    std::optional<std::string> email_;
    std::optional<std::string> accountType_;
    std::optional<CodexReply> limits_;
    std::optional<std::string> refusal_;
};

/// What the probe makes of all that `codex app-server` wrote, as if it had come in one piece; the
/// last line may lack its line feed. Throws UsageProviderError.
AgentUsageSnapshot codexSnapshot(std::string_view output, Instant now,
                                 std::string_view homeDirectory);

} // namespace vellmark
