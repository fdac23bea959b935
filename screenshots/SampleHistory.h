#pragma once

#include "store/UsageHistory.h"
#include "store/UsageState.h"

namespace vellmark::samples {

/// Puts into `history` what led to the figures of `state`: more than a year of working days, with
/// resets, a time in which nobody read and one in which Claude could not be read. The same at every
/// run.
void addHistory(UsageHistory& history, const UsageState& state);

/// Only what was recorded on the day itself.
void addFirstDay(UsageHistory& history, const UsageState& state);

} // namespace vellmark::samples
