#pragma once

#include "cli/Shapes.h"
#include "store/UsageHistory.h"

#include <cstddef>
#include <string>

namespace vellmark {

/// What was left of a window over a range of time, as one line of `width` of the shapes' levels:
/// the higher, the more. A column shows the least that was left in its span; one without a reading
/// is blank.
std::string sparkline(const UsageHistory& history, const WindowKey& key, Instant from, Instant to,
                      std::size_t width, const Shapes& shapes);

} // namespace vellmark
