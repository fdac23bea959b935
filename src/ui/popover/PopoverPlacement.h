#pragma once

#include <QRect>

namespace vellmark {

/// Where a popover that wants a size stands: centred below `anchor` with a gap of 6, above it where
/// there is no room below but above, beside it where that shows clearly more than both; and at
/// least 8 from each edge of `available`, the screen without its panels. Lower than it wants where
/// there is too little room; over the anchor only where it would otherwise show next to nothing.
/// All in the same coordinates.
///
/// `tallest` is the height that it may come to want: the side is chosen for that, so that it stays
/// while the popover is open.
QRect popoverPlacement(const QRect& anchor, QSize wanted, int tallest, const QRect& available);

} // namespace vellmark
