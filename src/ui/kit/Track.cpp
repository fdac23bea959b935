#include "ui/kit/Track.h"

#include "ui/kit/Theme.h"

#include <QPainter>
#include <QWidget>

namespace vellmark::kit {

namespace {
constexpr double cornerRadius = 4;
}

QColor trackColor(const QWidget& widget) {
    for (const QWidget* below = &widget; below != nullptr; below = below->parentWidget()) {
        if (const auto* ground = dynamic_cast<const ChangingGround*>(below)) {
            return mixed(color(ColorRole::track), color(ColorRole::trackOnHover),
                         ground->groundChange());
        }
    }
    return color(ColorRole::track);
}

void drawBone(QPainter& painter, const QWidget& widget, const QRectF& box) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(trackColor(widget));
    painter.drawRoundedRect(box, cornerRadius, cornerRadius);
}

} // namespace vellmark::kit
