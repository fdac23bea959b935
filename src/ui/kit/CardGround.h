#pragma once

class QPainter;
class QRect;

namespace vellmark::kit {

/// The ground of a card that is no button: card colour with a hairline around it.
void drawCardGround(QPainter& painter, const QRect& box);

} // namespace vellmark::kit
