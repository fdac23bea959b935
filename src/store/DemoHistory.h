#pragma once

#include "model/UsageHistorySample.h"
#include "platform/Machine.h"

#include <vector>

namespace vellmark {

/// A month of made history for the simulated agents of the demo, up to `now`: it ends where their
/// figures begin, grows in working hours and rests at night. The same for the same `now`, but for
/// the samples' identifiers.
std::vector<UsageHistorySample> demoHistory(Instant now);

/// Puts it where the store looks for its history on `machine`, so that every screen of the demo has
/// life. Throws std::system_error.
void writeDemoHistory(const Machine& machine, Instant now);

} // namespace vellmark
