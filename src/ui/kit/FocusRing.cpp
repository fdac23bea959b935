#include "ui/kit/FocusRing.h"

#include "ui/kit/Metrics.h"
#include "ui/kit/Theme.h"

#include <QPainter>

#include <algorithm>

namespace vellmark::kit {

namespace {
int ringCount = 0;
}

FocusRing::FocusRing(QWidget* control, FocusShape shape)
    : QWidget(control->parentWidget()), control_(control), shape_(shape) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
    ++ringCount;
}

FocusRing::~FocusRing() {
    --ringCount;
}

bool FocusRing::isAnyShown() {
    return ringCount > 0;
}

void FocusRing::follow(const QRect& part) {
    const int reach = shape_.gap + focusWidth;
    setGeometry(part.translated(control_->pos()).adjusted(-reach, -reach, reach, reach));
    raise();
    show();
}

void FocusRing::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(color(ColorRole::focus), focusWidth));
    const double half = focusWidth / 2.0;
    const double radius = std::max(shape_.cornerRadius + shape_.gap + half, 2.0);
    painter.drawRoundedRect(QRectF(rect()).adjusted(half, half, -half, -half), radius, radius);
}

} // namespace vellmark::kit
