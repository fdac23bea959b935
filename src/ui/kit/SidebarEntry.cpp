#include "ui/kit/SidebarEntry.h"

#include "ui/kit/FigureText.h"
#include "ui/kit/Icon.h"
#include "ui/kit/Metrics.h"

#include <QPainter>

namespace vellmark::kit {

namespace {
constexpr int entryHeight = 32;
constexpr int padding = 10;
constexpr int markPlace = 20;
constexpr int iconSide = 16;
constexpr int gap = 10;
constexpr int detailGap = 8;
/// The ring runs inside the row, whose neighbours touch it.
constexpr FocusShape ringInside{radius::control, -focusWidth};
} // namespace

SidebarEntry::SidebarEntry(QWidget* parent)
    : QAbstractButton(parent), interaction_(this, ringInside) {
    setCheckable(true);
    setAutoExclusive(true);
    setFocusPolicy(Qt::StrongFocus);
}

void SidebarEntry::setLook(const SidebarEntryLook& look) {
    if (look == look_) {
        return;
    }
    look_ = look;
    setText(look.words);
    setAccessibleName(look.detail.isEmpty() ? look.words
                                            : look.words + QStringLiteral(", ") + look.detail);
    update();
}

bool SidebarEntry::isShortened() const {
    return textWidth(look_.words, style::bodyMedium) > wordsRect().width();
}

QRectF SidebarEntry::wordsRect() const {
    const double taken =
        look_.detail.isEmpty() ? 0 : textWidth(look_.detail, style::smallMedium) + detailGap;
    constexpr double left = padding + markPlace + gap;
    return {left, 0, width() - padding - taken - left, static_cast<double>(height())};
}

QSize SidebarEntry::sizeHint() const {
    return {224, entryHeight};
}

void SidebarEntry::keyPressEvent(QKeyEvent* event) {
    interaction_.showFocus();
    QAbstractButton::keyPressEvent(event);
}

void SidebarEntry::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(isEnabled() ? 1 : disabledOpacity);
    painter.setPen(Qt::NoPen);
    painter.setBrush(isChecked() || isDown()
                         ? color(ColorRole::select)
                         : mixed(Qt::transparent, color(ColorRole::hover), interaction_.hover()));
    painter.drawRoundedRect(rect(), radius::control, radius::control);
    const double middle = height() / 2.0;
    if (look_.logo) {
        drawLogo(painter, QPointF(padding, middle - markPlace / 2.0), markPlace, *look_.logo,
                 look_.badge);
    } else {
        const double inset = (markPlace - iconSide) / 2.0;
        drawIcon(painter, QRectF(padding + inset, middle - iconSide / 2.0, iconSide, iconSide),
                 look_.iconName, color(ColorRole::ink2));
    }
    painter.setPen(color(ColorRole::ink2));
    drawText(painter, QRectF(0, 0, width() - padding, height()), Qt::AlignRight, look_.detail,
             style::smallMedium);
    const QRectF words = wordsRect();
    painter.setPen(color(ColorRole::ink));
    drawText(painter, words, Qt::AlignLeft,
             elidedText(look_.words, style::bodyMedium, words.width()), style::bodyMedium);
}

} // namespace vellmark::kit
