#pragma once

#include "model/AgentUsageSnapshot.h"
#include "probes/antigravity/AntigravityOutput.h"

#include <cstdint>
#include <string>

namespace vellmark {

/// One finished run of the Antigravity CLI.
struct AntigravityRun {
    /// From standard output and standard error together.
    AntigravityOutput output;
    /// The CLI's own log; empty when there is none.
    std::string log;
    std::int32_t exitStatus = 0;
    /// The run was stopped by its time limit.
    bool timedOut = false;
    /// The run was stopped because it printed without end.
    bool outputCapped = false;
    /// The CLI's, told to the user when the reading has cost something; "?" when it is unknown.
    std::string version = "?";
};

/// What the probe makes of a run. A run that printed quotas counts whatever its end; one without
/// is judged by its words first, then by its end. Throws UsageProviderError.
AgentUsageSnapshot antigravitySnapshot(const AntigravityRun& run, Instant now);

} // namespace vellmark
