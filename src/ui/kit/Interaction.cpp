#include "ui/kit/Interaction.h"

#include "ui/kit/Metrics.h"

#include <QFocusEvent>

namespace vellmark::kit {

Interaction::Interaction(QWidget* control, FocusShape shape)
    : QObject(control), control_(control), shape_(shape), hover_(control) {
    control_->setAttribute(Qt::WA_Hover);
    control_->installEventFilter(this);
}

Interaction::~Interaction() {
    delete ring_;
}

void Interaction::setFocusPart(const QRect& part) {
    part_ = part;
    placeRing();
}

void Interaction::showFocus() {
    if (!ring_ && control_->parentWidget() != nullptr) {
        ring_ = new FocusRing(control_, shape_);
    }
    placeRing();
}

void Interaction::placeRing() {
    if (ring_) {
        ring_->follow(part_.isNull() ? control_->rect() : part_);
    }
}

void Interaction::handleFocusIn(Qt::FocusReason reason) {
    switch (reason) {
    case Qt::TabFocusReason:
    case Qt::BacktabFocusReason:
    case Qt::ShortcutFocusReason:
        showFocus();
        break;
    case Qt::ActiveWindowFocusReason:
    case Qt::PopupFocusReason:
        if (hadRing_) {
            showFocus();
        }
        break;
    default:
        // A click needs no ring: the pointer shows where one is.
        break;
    }
}

void Interaction::handleFocusOut() {
    hadRing_ = !ring_.isNull();
    delete ring_;
}

bool Interaction::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
    case QEvent::HoverEnter:
        if (control_->isEnabled()) {
            hover_.moveTo(1, duration::hoverIn);
        }
        break;
    case QEvent::HoverLeave:
        hover_.moveTo(0, duration::hoverOut);
        break;
    case QEvent::Hide:
    case QEvent::EnabledChange:
        hover_.jumpTo(0);
        break;
    case QEvent::FocusIn:
        handleFocusIn(static_cast<QFocusEvent*>(event)->reason());
        break;
    case QEvent::FocusOut:
        handleFocusOut();
        break;
    case QEvent::Move:
    case QEvent::Resize:
        placeRing();
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

} // namespace vellmark::kit
