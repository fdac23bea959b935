#include "ui/kit/LegendKey.h"

#include "ui/kit/ChartPainting.h"
#include "ui/kit/FigureText.h"
#include "ui/kit/Metrics.h"

#include <QPainter>

#include <cmath>

namespace vellmark::kit {

namespace {
constexpr int keyHeight = 22;
constexpr int padding = 8;
constexpr double sampleWidth = 18;
constexpr double gap = 6;
constexpr double hiddenOpacity = 0.6;
} // namespace

LegendKey::LegendKey(QWidget* parent)
    : QAbstractButton(parent), interaction_(this, FocusShape{radius::control, 0}) {
    setCheckable(true);
    setFocusPolicy(Qt::StrongFocus);
}

void LegendKey::setLook(const Look& look) {
    setChecked(look.isShown);
    if (look == look_) {
        return;
    }
    look_ = look;
    setText(look.name);
    updateGeometry();
    update();
}

QSize LegendKey::sizeHint() const {
    double width = sampleWidth + gap + textWidth(look_.name, style::smallMedium);
    if (!look_.value.isEmpty()) {
        width += gap + textWidth(look_.value, style::small);
    }
    return {static_cast<int>(std::ceil(width)) + 2 * padding, keyHeight};
}

void LegendKey::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (isEnabled() && (isDown() || interaction_.hover() > 0)) {
        painter.setPen(Qt::NoPen);
        QColor ground = color(isDown() ? ColorRole::select : ColorRole::hover);
        ground.setAlphaF(static_cast<float>(isDown() ? 1 : interaction_.hover()));
        painter.setBrush(ground);
        painter.drawRoundedRect(rect(), radius::control, radius::control);
    }
    painter.setOpacity(look_.isShown ? 1 : hiddenOpacity);
    const double middle = keyHeight / 2.0;
    ChartLook chart;
    chart.accentLight = look_.accentLight;
    chart.accentDark = look_.accentDark;
    chart.isLarge = true;
    QPen pen = chartPen(chart, look_.stroke);
    if (!look_.isShown) {
        pen.setColor(color(ColorRole::ink3));
    }
    painter.setPen(pen);
    painter.drawLine(QPointF(padding + 1, middle), QPointF(padding + sampleWidth - 1, middle));
    QRectF box(padding + sampleWidth + gap, 0, width(), keyHeight);
    painter.setPen(color(look_.isShown ? ColorRole::ink : ColorRole::ink2));
    drawText(painter, box, Qt::AlignLeft, look_.name, style::smallMedium);
    box.translate(textWidth(look_.name, style::smallMedium) + gap, 0);
    painter.setPen(color(ColorRole::ink2));
    drawText(painter, box, Qt::AlignLeft, look_.value, style::small);
}

} // namespace vellmark::kit
