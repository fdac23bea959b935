#include "ui/kit/Toggle.h"

#include "ui/kit/FigureText.h"
#include "ui/kit/Icon.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/Theme.h"

#include <QPainter>

#include <cmath>

namespace vellmark::kit {

namespace {

constexpr int switchHeight = 20;
constexpr double knobSide = 16;
constexpr double knobInset = 2;
constexpr int boxSide = 16;
constexpr int boxGap = 8;

/// The ground of what is on, following pointer and press.
QColor onGround(const QAbstractButton& button, double hover) {
    if (button.isDown()) {
        return color(ColorRole::primaryPressed);
    }
    return mixed(color(ColorRole::primary), color(ColorRole::primaryHover), hover);
}

} // namespace

Switch::Switch(QWidget* parent)
    : QAbstractButton(parent), interaction_(this, FocusShape{switchHeight / 2.0, focusGap}) {
    setCheckable(true);
    setFocusPolicy(Qt::StrongFocus);
}

void Switch::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(isEnabled() ? 1 : disabledOpacity);
    painter.setPen(Qt::NoPen);
    painter.setBrush(isChecked() ? onGround(*this, interaction_.hover())
                                 : mixed(color(ColorRole::lineStrong), color(ColorRole::none),
                                         isDown() ? 0.35 : 0.2 * interaction_.hover()));
    painter.drawRoundedRect(rect(), switchHeight / 2.0, switchHeight / 2.0);
    painter.setBrush(isChecked() ? color(ColorRole::onPrimary) : QColor(Qt::white));
    const double left = isChecked() ? width() - knobInset - knobSide : knobInset;
    painter.drawEllipse(QRectF(left, knobInset, knobSide, knobSide));
}

Check::Check(QWidget* parent)
    : QAbstractButton(parent), interaction_(this, FocusShape{radius::check, focusGap}) {
    setCheckable(true);
    setFocusPolicy(Qt::StrongFocus);
}

QSize Check::sizeHint() const {
    if (text().isEmpty()) {
        return {boxSide, boxSide};
    }
    const double words = textWidth(text(), style::text);
    return {boxSide + boxGap + static_cast<int>(std::ceil(words)), boxSide};
}

void Check::resizeEvent(QResizeEvent* /*event*/) {
    interaction_.setFocusPart(QRect(0, (height() - boxSide) / 2, boxSide, boxSide));
}

void Check::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(isEnabled() ? 1 : disabledOpacity);
    const QRectF box(0, (height() - boxSide) / 2.0, boxSide, boxSide);
    painter.setPen(Qt::NoPen);
    if (isChecked()) {
        painter.setBrush(onGround(*this, interaction_.hover()));
        painter.drawRoundedRect(box, radius::check, radius::check);
        drawIcon(painter, box.adjusted(2, 2, -2, -2), "checkmark", color(ColorRole::onPrimary));
    } else {
        painter.setBrush(isDown() ? color(ColorRole::fillPressed)
                                  : mixed(color(ColorRole::card), color(ColorRole::fillHover),
                                          interaction_.hover()));
        painter.setPen(QPen(color(ColorRole::lineStrong), 1));
        painter.drawRoundedRect(box.adjusted(0.5, 0.5, -0.5, -0.5), radius::check - 0.5,
                                radius::check - 0.5);
    }
    painter.setPen(color(ColorRole::ink));
    drawText(painter, QRectF(boxSide + boxGap, 0, width(), height()), Qt::AlignLeft, text(),
             style::text);
}

} // namespace vellmark::kit
