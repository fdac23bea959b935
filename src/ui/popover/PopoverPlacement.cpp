#include "ui/popover/PopoverPlacement.h"

#include <algorithm>

namespace vellmark {

namespace {
constexpr int anchorGap = 6;
constexpr int edgeGap = 8;

/// As near to `wanted` as the room allows; at its start where there is too little.
int within(int wanted, int length, int start, int roomLength) {
    return std::max(std::min(wanted, start + roomLength - length), start);
}
} // namespace

QRect popoverPlacement(const QRect& anchor, QSize wanted, const QRect& available) {
    const QRect room = available.adjusted(edgeGap, edgeGap, -edgeGap, -edgeGap);
    const QSize size(wanted.width(), std::min(wanted.height(), room.height()));
    const int below = anchor.top() + anchor.height() + anchorGap;
    const int above = anchor.top() - anchorGap - size.height();
    const int roomBelow = room.top() + room.height() - below;
    const int roomAbove = anchor.top() - anchorGap - room.top();
    const bool goesBelow = roomBelow >= size.height() || roomBelow >= roomAbove;
    const int left = anchor.left() + (anchor.width() - size.width()) / 2;
    return {QPoint(within(left, size.width(), room.left(), room.width()),
                   within(goesBelow ? below : above, size.height(), room.top(), room.height())),
            size};
}

} // namespace vellmark
