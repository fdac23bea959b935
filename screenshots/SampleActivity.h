#pragma once

#include "store/ActivityEntry.h"
#include "text/Localization.h"

#include <cstddef>
#include <vector>

namespace vellmark::samples {

/// Two days of the activity log up to `now()`: quiet refreshes, failures, one of them with a long
/// reason, and what the user did.
std::vector<ActivityEntry> activity(const Localization& words);

/// At least `count` entries of a program that reads every five minutes, the last one at `now()`.
std::vector<ActivityEntry> longActivity(std::size_t count, const Localization& words);

} // namespace vellmark::samples
