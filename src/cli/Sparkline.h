#pragma once

#include "store/UsageHistory.h"

#include <cstddef>
#include <string>

namespace vellmark {

/// What was left of a window over a range of time, as one line of `width` block characters: the
/// higher, the more. A column shows the least that was left in its span; one without a reading is
/// blank.
std::string sparkline(const UsageHistory& history, const WindowKey& key, Instant from, Instant to,
                      std::size_t width);

} // namespace vellmark
