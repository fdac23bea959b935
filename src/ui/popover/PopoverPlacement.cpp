#include "ui/popover/PopoverPlacement.h"

#include <algorithm>

namespace vellmark {

namespace {
constexpr int anchorGap = 6;
constexpr int edgeGap = 8;
/// Head, tabs, foot and a first row.
constexpr int leastHeight = 240;
/// Beside the anchor is worth it for this share of the popover's height.
constexpr int worthwhileShare = 8;

/// As near to `wanted` as the room allows; at its start where there is too little.
int within(int wanted, int length, int start, int roomLength) {
    return std::max(std::min(wanted, start + roomLength - length), start);
}
} // namespace

QRect popoverPlacement(const QRect& anchor, QSize wanted, int tallest, const QRect& available) {
    const QRect room = available.adjusted(edgeGap, edgeGap, -edgeGap, -edgeGap);
    const int anchorRight = anchor.left() + anchor.width();
    const int anchorBottom = anchor.top() + anchor.height();
    const int roomBelow = room.top() + room.height() - anchorBottom - anchorGap;
    const int roomAbove = anchor.top() - anchorGap - room.top();
    const int roomLeft = anchor.left() - anchorGap - room.left();
    const int roomRight = room.left() + room.width() - anchorRight - anchorGap;
    const int most = std::max(tallest, wanted.height());

    const bool goesBelow = roomBelow >= most || roomBelow >= roomAbove;
    const int roomAtSide = std::max(goesBelow ? roomBelow : roomAbove, leastHeight);
    const int gain = std::min(most, room.height()) - std::min(most, roomAtSide);
    const bool goesBeside =
        gain > most / worthwhileShare && std::max(roomLeft, roomRight) >= wanted.width();

    const int height =
        std::min({wanted.height(), room.height(), goesBeside ? room.height() : roomAtSide});
    int left = anchor.left() + (anchor.width() - wanted.width()) / 2;
    int top = goesBelow ? anchorBottom + anchorGap : anchor.top() - anchorGap - height;
    if (goesBeside) {
        left = roomLeft >= roomRight ? anchor.left() - anchorGap - wanted.width()
                                     : anchorRight + anchorGap;
        top = anchor.top() + (anchor.height() - height) / 2;
    }
    return {within(left, wanted.width(), room.left(), room.width()),
            within(top, height, room.top(), room.height()), wanted.width(), height};
}

} // namespace vellmark
