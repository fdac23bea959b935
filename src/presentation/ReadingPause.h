#pragma once

#include "text/Instant.h"

namespace vellmark {

/// The longest that two samples of a window are apart while its agent is being read: one comes
/// after half an hour at the latest, with the first reading from then on. Before `wholeSince` the
/// history is thinned out to one an hour, of which two may lie two hours apart.
constexpr Seconds longestReadingPause(Instant at, Instant wholeSince) {
    return at < wholeSince ? Seconds(135 * 60) : Seconds(75 * 60);
}

} // namespace vellmark
