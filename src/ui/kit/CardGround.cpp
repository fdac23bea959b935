#include "ui/kit/CardGround.h"

#include "ui/kit/Metrics.h"
#include "ui/kit/Theme.h"

#include <QPainter>

namespace vellmark::kit {

void drawCardGround(QPainter& painter, const QRect& box) {
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(color(ColorRole::card));
    painter.setPen(QPen(color(ColorRole::line), 1));
    painter.drawRoundedRect(QRectF(box).adjusted(0.5, 0.5, -0.5, -0.5), radius::card - 0.5,
                            radius::card - 0.5);
}

} // namespace vellmark::kit
