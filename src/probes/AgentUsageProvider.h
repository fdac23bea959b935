#pragma once

#include "model/AgentUsageSnapshot.h"
#include "text/Instant.h"

#include <optional>
#include <string>

namespace vellmark {

/// How often an agent may be read without the user asking for it.
struct ReadingPace {
    /// At least this long between two automatic readings; zero leaves it to the refreshes.
    Seconds interval{0};
    /// False: an automatic reading would cost the user something and must not be made.
    bool automatic = true;
    bool operator==(const ReadingPace&) const = default;
};

/// What the user wishes about the readings of one agent.
struct ReadingOptions {
    /// One of the descriptor's `readingWays`; empty: the first that the agent's CLI has.
    std::string way;
    /// The pause between two automatic readings that cost something, in place of the agent's own.
    std::optional<Seconds> interval;

    bool operator==(const ReadingOptions&) const = default;
};

/// Reads one agent. `fetch` blocks its thread, may be called from any thread and from several at
/// once, and throws UsageProviderError (or a std::exception for what nobody expected).
///
/// A snapshot is `live` when its figures were read by this fetch, and `stale`, with an `error` that
/// tells why, when the CLI had only figures that it had kept.
class AgentUsageProvider {
public:
    virtual ~AgentUsageProvider() = default;
    virtual AgentProviderID id() const = 0;
    virtual AgentUsageSnapshot fetch() = 0;
    /// A fetch that the user has not asked for: as `fetch`, but it may refuse to spend quota.
    virtual AgentUsageSnapshot fetchAutomatically() { return fetch(); }
    /// Judged by what is known of the agent so far. Called on the main thread; must not wait.
    virtual ReadingPace pace() const { return {}; }
};

} // namespace vellmark
