#pragma once

#include "model/AgentUsageSnapshot.h"
#include "text/Dates.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vellmark {

/// One finished run of the Antigravity CLI.
struct AntigravityRun {
    /// Standard output and standard error, as they came.
    std::string output;
    /// The CLI's own log; empty when there is none.
    std::string log;
    std::int32_t exitStatus = 0;
    /// The run was stopped by its time limit.
    bool timedOut = false;
};

/// What the probe makes of a run. A run that printed quotas counts whatever its end; one without
/// is judged by its words first, then by its end. Throws UsageProviderError.
AgentUsageSnapshot antigravitySnapshot(const AntigravityRun& run, Instant now,
                                       const TimeZone& localZone = TimeZone::system());

} // namespace vellmark
