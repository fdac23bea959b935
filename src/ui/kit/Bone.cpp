#include "ui/kit/Bone.h"

#include "ui/kit/Theme.h"

#include <QPainter>

namespace vellmark::kit {

namespace {
constexpr double cornerRadius = 4;
}

void drawBone(QPainter& painter, const QRectF& box) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(color(ColorRole::track));
    painter.drawRoundedRect(box, cornerRadius, cornerRadius);
}

} // namespace vellmark::kit
