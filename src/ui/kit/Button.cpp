#include "ui/kit/Button.h"

#include "ui/kit/FigureText.h"
#include "ui/kit/Icon.h"
#include "ui/kit/Metrics.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace vellmark::kit {

namespace {

constexpr int normalHeight = 28;
constexpr int outlinedHeight = 24;
constexpr int iconGap = 6;
constexpr int trailingIconGap = 4;

/// Colours at rest, pointed at and pressed; a ground of no opacity is none.
struct Grounds {
    QColor rest;
    QColor hover;
    QColor pressed;
};

Grounds groundsOf(Button::Kind kind) {
    switch (kind) {
    case Button::Kind::primary:
        return {color(ColorRole::primary), color(ColorRole::primaryHover),
                color(ColorRole::primaryPressed)};
    case Button::Kind::plain:
        return {Qt::transparent, color(ColorRole::fill), color(ColorRole::fillPressed)};
    case Button::Kind::outlined:
        return {color(ColorRole::card), color(ColorRole::fillHover), color(ColorRole::fillPressed)};
    case Button::Kind::normal:
        break;
    }
    return {color(ColorRole::fill), color(ColorRole::fillHover), color(ColorRole::fillPressed)};
}

} // namespace

Button::Button(Kind kind, QWidget* parent)
    : QAbstractButton(parent), kind_(kind),
      interaction_(this, FocusShape{radius::control, focusGap}), turn_(this) {
    setFocusPolicy(Qt::StrongFocus);
}

void Button::setIconName(std::string_view name, int side) {
    iconName_ = name;
    iconSide_ = side;
    updateGeometry();
    update();
}

void Button::setTrailingIconName(std::string_view name, int side) {
    trailingIconName_ = name;
    trailingIconSide_ = side;
    updateGeometry();
    update();
}

void Button::setContentColor(ColorRole color) {
    contentColor_ = color;
    update();
}

void Button::setSmallText(bool isSmall) {
    isSmallText_ = isSmall;
    updateGeometry();
    update();
}

void Button::reserveWidthFor(const QStringList& words) {
    reservedWords_ = words;
    updateGeometry();
}

const TextStyle& Button::textStyle() const {
    return isSmallText_ ? style::smallMedium : style::row;
}

int Button::padding() const {
    switch (kind_) {
    case Kind::plain:
        return plainPadding;
    case Kind::outlined:
        return 10;
    default:
        return 12;
    }
}

double Button::contentWidth(const QString& words) const {
    double width = textWidth(words, textStyle());
    if (!iconName_.empty()) {
        width += iconSide_ + (words.isEmpty() ? 0 : iconGap);
    }
    if (!trailingIconName_.empty()) {
        width += trailingIconSide_ + trailingIconGap;
    }
    return width;
}

QSize Button::sizeHint() const {
    const int height = kind_ == Kind::outlined ? outlinedHeight : normalHeight;
    if (text().isEmpty()) {
        return {height, height};
    }
    double width = contentWidth(text());
    for (const QString& words : reservedWords_) {
        width = std::max(width, contentWidth(words));
    }
    return {static_cast<int>(std::ceil(width)) + 2 * padding(), height};
}

QColor Button::groundColor() const {
    const Grounds grounds = groundsOf(kind_);
    return isDown() ? grounds.pressed : mixed(grounds.rest, grounds.hover, interaction_.hover());
}

QColor Button::contentColor() const {
    if (turn_.isTurning() && text().isEmpty()) {
        return color(ColorRole::ink3);
    }
    if (contentColor_) {
        return color(*contentColor_);
    }
    return color(kind_ == Kind::primary ? ColorRole::onPrimary : ColorRole::ink);
}

void Button::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (!isEnabled()) {
        painter.setOpacity(disabledOpacity);
    }
    painter.setPen(Qt::NoPen);
    painter.setBrush(groundColor());
    painter.drawRoundedRect(rect(), radius::control, radius::control);
    if (kind_ == Kind::outlined) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(color(ColorRole::lineStrong), 1));
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5),
                                radius::control - 0.5, radius::control - 0.5);
    }
    paintContent(painter);
}

void Button::paintContent(QPainter& painter) const {
    const QColor content = contentColor();
    double left = (width() - contentWidth(text())) / 2;
    const double middle = height() / 2.0;
    if (!iconName_.empty()) {
        const bool isDimmed = turn_.isTurning() && motion::isReduced();
        drawIcon(painter, QRectF(left, middle - iconSide_ / 2.0, iconSide_, iconSide_), iconName_,
                 isDimmed ? color(ColorRole::ink3) : content, turn_.degrees());
        left += iconSide_ + iconGap;
    }
    painter.setPen(content);
    drawText(painter, QRectF(left, 0, width() - left, height()), Qt::AlignLeft, text(),
             textStyle());
    if (!trailingIconName_.empty()) {
        left += textWidth(text(), textStyle()) + trailingIconGap;
        drawIcon(
            painter,
            QRectF(left, middle - trailingIconSide_ / 2.0, trailingIconSide_, trailingIconSide_),
            trailingIconName_, content);
    }
}

} // namespace vellmark::kit
