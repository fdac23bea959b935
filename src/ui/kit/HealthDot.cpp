#include "ui/kit/HealthDot.h"

#include "ui/kit/FigureText.h"
#include "ui/kit/Icon.h"

#include <QPainter>

#include <cmath>

namespace vellmark::kit {

namespace {

constexpr double dotSide = 8;
constexpr double iconSide = 12;
constexpr double gap = 6;
constexpr double pillPadding = 8;
constexpr int pillHeight = 20;

double markSide(const HealthLook& look) {
    return look.iconName.empty() ? dotSide : iconSide;
}

double wantedWidth(const HealthLook& look) {
    return markSide(look) + gap + textWidth(look.words, style::smallMedium);
}

void paintMarkAndWords(QPainter& painter, QRectF box, const HealthLook& look) {
    const double side = markSide(look);
    const QRectF mark(box.left(), box.center().y() - side / 2, side, side);
    if (look.iconName.empty()) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(color(look.dot));
        painter.drawEllipse(mark);
    } else {
        drawIcon(painter, mark, look.iconName, color(ColorRole::ink2));
    }
    box.setLeft(box.left() + side + gap);
    painter.setPen(color(ColorRole::ink2));
    drawText(painter, box, Qt::AlignLeft, look.words, style::smallMedium);
}

} // namespace

HealthDot::HealthDot(QWidget* parent) : QLabel(parent) {
    setTextFormat(Qt::PlainText);
}

void HealthDot::setLook(const HealthLook& look) {
    if (look != look_) {
        look_ = look;
        setText(look.words);
        update();
    }
}

QSize HealthDot::sizeHint() const {
    return {static_cast<int>(std::ceil(wantedWidth(look_))), style::smallMedium.lineHeight};
}

void HealthDot::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    // Stands at the end of its row: what rounding adds to the width belongs before the mark.
    paintMarkAndWords(painter, QRectF(rect()).adjusted(width() - wantedWidth(look_), 0, 0, 0),
                      look_);
}

Pill::Pill(QWidget* parent) : QLabel(parent) {
    setTextFormat(Qt::PlainText);
}

void Pill::setLook(const HealthLook& look) {
    look_ = look;
    hasMark_ = true;
    setText(look.words);
    update();
}

void Pill::setWords(const QString& words) {
    look_ = {words, ColorRole::none, {}};
    hasMark_ = false;
    setText(words);
    update();
}

QSize Pill::sizeHint() const {
    const double content =
        hasMark_ ? wantedWidth(look_) : textWidth(look_.words, style::smallMedium);
    return {static_cast<int>(std::ceil(content + 2 * pillPadding)), pillHeight};
}

void Pill::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color(ColorRole::fill));
    painter.drawRoundedRect(rect(), pillHeight / 2.0, pillHeight / 2.0);
    const QRectF content = QRectF(rect()).adjusted(pillPadding, 0, -pillPadding, 0);
    if (hasMark_) {
        paintMarkAndWords(painter, content, look_);
    } else {
        painter.setPen(color(ColorRole::ink2));
        drawText(painter, content, Qt::AlignLeft, look_.words, style::smallMedium);
    }
}

} // namespace vellmark::kit
