#pragma once

#include "platform/Machine.h"
#include "text/Instant.h"

namespace vellmark {

/// Puts a month of made history for the simulated agents of the demo where the store looks for its
/// history on `machine`, so that every screen has life. It goes up to `now`, ends where the agents'
/// figures begin, grows in working hours and rests at night; the same for the same `now`, but for
/// the samples' identifiers. Throws std::system_error.
void writeDemoHistory(const Machine& machine, Instant now);

} // namespace vellmark
