#pragma once

#include "model/AgentUsageSnapshot.h"

#include <map>
#include <set>
#include <vector>

namespace vellmark {

/// What is shown of each agent, made of its last good reading and of how the latest attempt went.
/// Keeps disabled agents too, so that they are back at once. Main thread.
class AgentReadings {
public:
    /// A good reading of the previous run: shown as stale.
    void restore(AgentUsageSnapshot reading);

    /// An agent of which nothing is known shows as loading until the attempt ends.
    void attempt(const AgentProviderID& id, Instant now);
    void succeed(AgentUsageSnapshot reading);
    /// The last good figures stay, as stale and with the error.
    void fail(const AgentProviderID& id, UsageProviderError error, Instant attemptedAt);
    /// The attempt was dropped: nothing is loading any more.
    void abandon(const AgentProviderID& id);
    void abandonAll();

    /// Null before the first one.
    const AgentUsageSnapshot* lastGood(const AgentProviderID& id) const;
    const std::map<AgentProviderID, AgentUsageSnapshot>& lastGood() const { return lastGood_; }

    /// What there is to show of the agents of `order` that are in `enabled`.
    std::vector<AgentUsageSnapshot> shown(const std::vector<AgentProviderID>& order,
                                          const std::set<AgentProviderID>& enabled) const;

private:
    std::map<AgentProviderID, AgentUsageSnapshot> shown_;
    std::map<AgentProviderID, AgentUsageSnapshot> lastGood_;
};

} // namespace vellmark
