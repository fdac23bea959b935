#include "ui/kit/OverlayBar.h"

#include "ui/kit/Theme.h"

#include <QAbstractScrollArea>
#include <QPainter>

#include <algorithm>

namespace vellmark::kit {

namespace {
constexpr int barWidth = 12;
constexpr double thumbWidth = 6;
constexpr double leastThumb = 24;
constexpr double restOpacity = 0.4;
constexpr double hoverOpacity = 0.7;
} // namespace

OverlayBar::OverlayBar(QAbstractScrollArea* area)
    : QScrollBar(Qt::Vertical, area), area_(area), interaction_(this, FocusShape{}) {
    setFocusPolicy(Qt::NoFocus);
    setCursor(Qt::ArrowCursor);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    QScrollBar* own = area->verticalScrollBar();
    connect(own, &QScrollBar::rangeChanged, this, [this, own](int minimum, int maximum) {
        setRange(minimum, maximum);
        setPageStep(own->pageStep());
        setSingleStep(own->singleStep());
        setVisible(maximum > minimum);
    });
    connect(own, &QScrollBar::valueChanged, this, &QScrollBar::setValue);
    connect(this, &QScrollBar::valueChanged, own, &QScrollBar::setValue);
    hide();
}

void OverlayBar::place() {
    setGeometry(area_->width() - barWidth, 0, barWidth, area_->height());
    setPageStep(area_->verticalScrollBar()->pageStep());
    raise();
}

void OverlayBar::paintEvent(QPaintEvent* /*event*/) {
    const double range = maximum() - minimum() + pageStep();
    const double length = std::max(height() * pageStep() / range, leastThumb);
    const double travel = height() - length;
    const double top = travel * (value() - minimum()) / std::max(maximum() - minimum(), 1);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setOpacity(
        isSliderDown() ? 1 : restOpacity + (hoverOpacity - restOpacity) * interaction_.hover());
    painter.setBrush(color(ColorRole::ink3));
    const QRectF thumb(barWidth - thumbWidth - 3, top + 3, thumbWidth, length - 6);
    painter.drawRoundedRect(thumb, thumbWidth / 2, thumbWidth / 2);
}

} // namespace vellmark::kit
