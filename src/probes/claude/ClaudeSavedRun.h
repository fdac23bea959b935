#pragma once

#include "probes/SavedRun.h"

namespace vellmark {

/// A query's answer or a session's capture, whichever it is.
AgentUsageSnapshot readSavedClaudeRun(const SavedRun& run);

} // namespace vellmark
