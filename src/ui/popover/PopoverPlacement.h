#pragma once

#include <QRect>

namespace vellmark {

/// Where a popover that wants a size stands: centred below `anchor` with a gap of 6, above it where
/// there is no room below but above, and at least 8 from each edge of `available`, the screen
/// without its panels; lower than it wants on a screen that is too low. All in the same
/// coordinates.
QRect popoverPlacement(const QRect& anchor, QSize wanted, const QRect& available);

} // namespace vellmark
