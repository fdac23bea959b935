#include "ui/kit/ScrollArea.h"

#include "ui/kit/OverlayBar.h"

#include <QApplication>
#include <QScrollBar>

namespace vellmark::kit {

namespace {

/// By one press of an arrow key, and kept free beside a control that was scrolled to.
constexpr int lineStep = 40;

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
    setFocusPolicy(Qt::NoFocus);
    viewport()->setAutoFillBackground(false);
    verticalScrollBar()->setSingleStep(lineStep);
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
    overlay_->place();
}

} // namespace vellmark::kit
