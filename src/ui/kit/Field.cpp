#include "ui/kit/Field.h"

#include "ui/kit/Icon.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/TextStyle.h"
#include "ui/kit/Theme.h"

#include <QPainter>
#include <QPalette>

namespace vellmark::kit {

namespace {
constexpr int fieldHeight = 28;
constexpr int padding = 8;
constexpr int iconSide = 14;
constexpr int iconGap = 6;
/// QLineEdit keeps two points of its own before its text.
constexpr int ownMargin = 2;
} // namespace

Field::Field(QWidget* parent)
    : QLineEdit(parent), interaction_(this, FocusShape{radius::control, 0}) {
    setFrame(false);
    QPalette clear;
    clear.setColor(QPalette::Base, Qt::transparent);
    setPalette(clear);
    setFont(kit::font(style::text));
    placeText();
}

void Field::setIconName(std::string name) {
    iconName_ = std::move(name);
    placeText();
    update();
}

void Field::setRoomAtEnd(int room) {
    roomAtEnd_ = room;
    placeText();
}

void Field::placeText() {
    const int icon = iconName_.empty() ? 0 : iconSide + iconGap;
    setTextMargins(padding + icon - ownMargin, 0, padding + roomAtEnd_ - ownMargin, 0);
}

QSize Field::sizeHint() const {
    return {180, fieldHeight};
}

void Field::focusInEvent(QFocusEvent* event) {
    QLineEdit::focusInEvent(event);
    // Typing goes here however the focus came, so the ring always shows.
    interaction_.showFocus();
}

void Field::paintEvent(QPaintEvent* event) {
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setOpacity(isEnabled() ? 1 : disabledOpacity);
        painter.setBrush(color(ColorRole::card));
        painter.setPen(QPen(color(ColorRole::lineStrong), 1));
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5),
                                radius::control - 0.5, radius::control - 0.5);
        if (!iconName_.empty()) {
            drawIcon(painter, QRectF(padding, (height() - iconSide) / 2.0, iconSide, iconSide),
                     iconName_, color(ColorRole::ink2));
        }
    }
    QLineEdit::paintEvent(event);
}

} // namespace vellmark::kit
