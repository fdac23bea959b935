#pragma once

#include "model/AgentUsageSnapshot.h"
#include "probes/codex/CodexReply.h"

#include <optional>
#include <string>
#include <string_view>

namespace vellmark {

/// What the replies of one conversation have told so far.
class CodexReading {
public:
    void take(CodexReply reply);
    /// The rate limits have been answered.
    bool isComplete() const { return limits_.has_value(); }
    /// Of a complete reading. Throws UsageProviderError (`codexNoQuotas`, `codexNoWindows`).
    AgentUsageSnapshot snapshot(Instant now) const;

private:
    std::optional<std::string> email_;
    std::optional<CodexReply> limits_;
};

/// What the probe makes of all that `codex app-server` wrote, as if it had come in one piece; the
/// last line may lack its line feed. Throws UsageProviderError.
AgentUsageSnapshot codexSnapshot(std::string_view output, Instant now);

} // namespace vellmark
