#pragma once

#include "ui/kit/FocusRing.h"
#include "ui/kit/Motion.h"

#include <QPointer>

namespace vellmark::kit {

/// What pointer and keyboard do to a control: how far it is pointed at, and the ring around it when
/// the keyboard brought the focus there; it comes back with the focus from a menu or another
/// window. Watches the control; the control paints.
class Interaction : public QObject {
public:
    Interaction(QWidget* control, FocusShape shape);
    ~Interaction() override;

    /// 0 at rest, 1 when pointed at, in between on the way.
    double hover() const { return hover_.value(); }
    /// The part of the control that the ring surrounds, in its coordinates; all of it when null.
    void setFocusPart(const QRect& part);
    /// Puts the ring around a control that has the focus already without one.
    void showFocus();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void handleFocusIn(Qt::FocusReason reason);
    void handleFocusOut();
    void placeRing();

    QWidget* control_;
    FocusShape shape_;
    QRect part_;
    Transition hover_;
    QPointer<FocusRing> ring_;
    /// The control had the ring when it last lost the focus.
    bool hadRing_ = false;
};

} // namespace vellmark::kit
