#pragma once

#include "model/AgentUsageSnapshot.h"
#include "platform/Machine.h"
#include "text/Instant.h"

#include <cstdint>
#include <functional>
#include <string>

namespace vellmark {

/// What an agent's CLI left behind in an earlier run.
struct SavedRun {
    std::string output;
    std::string log;
    std::int32_t exitStatus = 0;
    bool timedOut = false;
    /// The moment that counts as now.
    Instant now{};
};

/// How an agent's saved run is read again, without any process.
struct SavedRunReader {
    /// As the agent's provider would: a snapshot, or UsageProviderError thrown.
    std::function<AgentUsageSnapshot(const SavedRun&, const Machine&)> read;
    /// What the reading depends on besides the output.
    bool heedsEnd = false; ///< exit status and time-out
    bool heedsLog = false;
};

} // namespace vellmark
