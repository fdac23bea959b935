#pragma once

#include "model/AgentUsageSnapshot.h"

#include <functional>
#include <map>
#include <set>
#include <string_view>
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
    /// The agent gave only figures that it had kept: they take the place of older ones, as stale
    /// and with their error.
    void fallBack(AgentUsageSnapshot reading, Instant attemptedAt);
    /// The last good figures stay, as stale and with the error.
    void fail(const AgentProviderID& id, UsageProviderError error, Instant attemptedAt);
    /// Adds the windows that the last good reading had and this one left out, with their age: if
    /// the reading is incomplete, all that are not over; otherwise those younger than `remembers`
    /// says for them (empty: none).
    void keepAbsentWindows(AgentUsageSnapshot& reading,
                           const std::function<Seconds(std::string_view)>& remembers) const;
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
