#pragma once

#include "platform/Machine.h"
#include "report/SupportReport.h"
#include "text/Localization.h"

namespace vellmark {

/// Gathers the facts of this machine: the agents' CLIs (asked all at once), the settings, the last
/// readings and the activity log of the last 30 days. Blocks for as long as the slowest check may
/// take (about 15 s).
SupportReportInput gatherSupportReport(const Machine& machine, const Localization& words,
                                       Instant now);

} // namespace vellmark
