#pragma once

#include "model/AgentProviderID.h"
#include "probes/AgentUsageProvider.h"
#include "text/Instant.h"

#include <map>
#include <optional>

namespace vellmark {

/// When an agent may be read without the user asking: after a failure its service is left alone for
/// 5, 10, 20, then 40 minutes, and a reading that costs something is made at its own pace. What the
/// user asks for is never held back.
///
/// Main thread. A clock that was set back makes a pause void, not longer.
class ReadingSchedule {
public:
    void attempted(const AgentProviderID& id, Instant now);
    void succeeded(const AgentProviderID& id, const ReadingPace& pace);
    /// `backsOff`: asking again at once would be useless.
    void failed(const AgentProviderID& id, const ReadingPace& pace, bool backsOff);

    bool isDue(const AgentProviderID& id, Instant now) const;
    /// Until when automatic refreshes leave the agent alone; absent when the next one reads it.
    std::optional<Instant> restsUntil(const AgentProviderID& id, Instant now) const;

private:
    struct Rest {
        Instant since{};
        Seconds span{0};
        int failures = 0;
    };
    std::map<AgentProviderID, Rest> rests_;
};

} // namespace vellmark
