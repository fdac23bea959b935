#include "ui/kit/Bar.h"

#include "ui/kit/Metrics.h"
#include "ui/kit/Track.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace vellmark::kit {

namespace {

constexpr double markWidth = 2;
constexpr double markGap = 1;

QPainterPath rounded(const QRectF& box) {
    QPainterPath path;
    const double radius = box.height() / 2;
    path.addRoundedRect(box, radius, radius);
    return path;
}

} // namespace

BarShape barShape(double width, double height, double share, std::optional<double> mark,
                  double pixelsPerPoint) {
    BarShape shape;
    const QRectF bar(0, barMarkReach, width, height);
    shape.track = rounded(bar);
    if (share > 0) {
        const double filled = std::clamp(width * share / 100, std::min(height, width), width);
        shape.fill = rounded(QRectF(0, barMarkReach, filled, height));
    }
    if (mark) {
        const double half = markWidth / 2;
        const double center = std::clamp(width * *mark / 100, half, std::max(half, width - half));
        const double left = std::round((center - half) * pixelsPerPoint) / pixelsPerPoint;
        shape.mark = QRectF(left, 0, markWidth, height + 2 * barMarkReach);
        QPainterPath gap;
        gap.addRect(shape.mark->adjusted(-markGap, 0, markGap, 0));
        shape.track = shape.track.subtracted(gap);
        shape.fill = shape.fill.subtracted(gap);
    }
    return shape;
}

Bar::Bar(int barHeight, QWidget* parent)
    : QProgressBar(parent), barHeight_(barHeight), share_(this) {
    setRange(0, 100);
    setTextVisible(false);
}

void Bar::setLook(const BarLook& look) {
    if (hasLook_ && look == look_) {
        return;
    }
    if (hasLook_) {
        share_.moveTo(look.share, duration::valueChange);
    } else {
        share_.jumpTo(look.share);
    }
    hasLook_ = true;
    look_ = look;
    update();
}

QSize Bar::sizeHint() const {
    return {186, barHeight_ + 2 * barMarkReach};
}

QSize Bar::minimumSizeHint() const {
    return {barHeight_, barHeight_ + 2 * barMarkReach};
}

void Bar::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const BarShape shape =
        barShape(width(), barHeight_, share_.value(), look_.mark, painter.deviceTransform().m11());
    painter.fillPath(shape.track, trackColor(*this));
    painter.setOpacity(look_.isStale ? staleOpacity : 1);
    painter.fillPath(shape.fill, color(look_.color));
    painter.setOpacity(1);
    if (shape.mark) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(color(ColorRole::ink));
        painter.drawRoundedRect(*shape.mark, markWidth / 2, markWidth / 2);
    }
}

} // namespace vellmark::kit
