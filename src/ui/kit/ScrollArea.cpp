#include "ui/kit/ScrollArea.h"

#include "ui/kit/Interaction.h"
#include "ui/kit/Theme.h"

#include <QApplication>
#include <QPainter>
#include <QScrollBar>
#include <QStyle>
#include <QStyleOptionSlider>

namespace vellmark::kit {

namespace {

constexpr int barWidth = 12;
constexpr double thumbWidth = 6;
constexpr double leastThumb = 24;
/// By one press of an arrow key, and kept free beside a control that was scrolled to.
constexpr int lineStep = 40;
constexpr double restOpacity = 0.4;
constexpr double hoverOpacity = 0.7;

class OverlayBar : public QScrollBar {
public:
    explicit OverlayBar(QWidget* parent)
        : QScrollBar(Qt::Vertical, parent), interaction_(this, FocusShape{}) {
        setFocusPolicy(Qt::NoFocus);
        setCursor(Qt::ArrowCursor);
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
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

private:
    Interaction interaction_;
};

QScrollBar::SliderAction scrollAction(int key) {
    switch (key) {
    case Qt::Key_Up:
        return QScrollBar::SliderSingleStepSub;
    case Qt::Key_Down:
        return QScrollBar::SliderSingleStepAdd;
    case Qt::Key_PageUp:
        return QScrollBar::SliderPageStepSub;
    case Qt::Key_PageDown:
        return QScrollBar::SliderPageStepAdd;
    case Qt::Key_Home:
        return QScrollBar::SliderToMinimum;
    case Qt::Key_End:
        return QScrollBar::SliderToMaximum;
    default:
        return QScrollBar::SliderNoAction;
    }
}

} // namespace

ScrollArea::ScrollArea(QWidget* parent) : QScrollArea(parent), overlay_(new OverlayBar(this)) {
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::NoFocus);
    viewport()->setAutoFillBackground(false);
    QScrollBar* own = verticalScrollBar();
    connect(own, &QScrollBar::rangeChanged, this, [this, own](int minimum, int maximum) {
        overlay_->setRange(minimum, maximum);
        overlay_->setPageStep(own->pageStep());
        overlay_->setSingleStep(own->singleStep());
        overlay_->setVisible(maximum > minimum);
    });
    connect(own, &QScrollBar::valueChanged, overlay_, &QScrollBar::setValue);
    connect(overlay_, &QScrollBar::valueChanged, own, &QScrollBar::setValue);
    overlay_->hide();
    own->setSingleStep(lineStep);
    // Qt does so only when the keyboard moves from one control in here to another.
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) {
        if (now != nullptr && widget() != nullptr && widget()->isAncestorOf(now)) {
            ensureWidgetVisible(now, 0, lineStep);
        }
    });
}

bool ScrollArea::scrollByKey(int key) {
    const QScrollBar::SliderAction action = scrollAction(key);
    verticalScrollBar()->triggerAction(action);
    return action != QScrollBar::SliderNoAction;
}

void ScrollArea::resizeEvent(QResizeEvent* event) {
    QScrollArea::resizeEvent(event);
    overlay_->setGeometry(width() - barWidth, 0, barWidth, height());
    overlay_->setPageStep(verticalScrollBar()->pageStep());
    overlay_->raise();
}

} // namespace vellmark::kit
