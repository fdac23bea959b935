#pragma once

#include "platform/Machine.h"
#include "probes/AgentFacts.h"
#include "report/SupportReport.h"
#include "store/ActivityEntry.h"
#include "text/Dates.h"
#include "text/Localization.h"

#include <functional>
#include <system_error>
#include <vector>

namespace vellmark {

/// How the facts are gathered by somebody who keeps the log open or shows how far it is. All of it
/// may be called from any thread.
struct SupportReportGathering {
    /// The log's entries since then, oldest first, and why there are not more; by default what
    /// stands in the file.
    std::function<std::vector<ActivityEntry>(Instant since, const TimeZone& zone,
                                             std::error_code& error)>
        activity = {};
    /// An agent's CLI has answered, or is not there.
    std::function<void(const AgentFacts&)> answered = {};
    /// Nobody waits for the facts any more: the log is not read.
    std::function<bool()> isCancelled = {};
};

/// Gathers the facts of this machine: the agents' CLIs (asked all at once), the settings, the last
/// readings and the activity log of the last 30 days. Blocks for as long as the slowest check may
/// take (about 15 s).
SupportReportInput gatherSupportReport(const Machine& machine, const Localization& words,
                                       Instant now, const SupportReportGathering& gathering = {});

} // namespace vellmark
