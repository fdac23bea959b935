#include "ui/kit/Card.h"

#include "ui/kit/Metrics.h"
#include "ui/kit/Theme.h"

#include <QPainter>

namespace vellmark::kit {

Card::Card(QWidget* parent)
    : QAbstractButton(parent), interaction_(this, FocusShape{radius::card, focusGap}) {
    setFocusPolicy(Qt::StrongFocus);
}

void Card::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(color(isDown() ? ColorRole::hover : ColorRole::card));
    painter.setPen(QPen(mixed(color(ColorRole::line), color(ColorRole::lineStrong),
                              isDown() ? 1 : interaction_.hover()),
                        1));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), radius::card - 0.5,
                            radius::card - 0.5);
}

} // namespace vellmark::kit
