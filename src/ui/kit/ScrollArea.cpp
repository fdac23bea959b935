#include "ui/kit/ScrollArea.h"

#include "ui/kit/OverlayBar.h"

namespace vellmark::kit {

ScrollArea::ScrollArea(QWidget* parent) : QScrollArea(parent), overlay_(new OverlayBar(this)) {
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setFocusPolicy(Qt::NoFocus);
    viewport()->setAutoFillBackground(false);
}

void ScrollArea::resizeEvent(QResizeEvent* event) {
    QScrollArea::resizeEvent(event);
    overlay_->place();
}

} // namespace vellmark::kit
