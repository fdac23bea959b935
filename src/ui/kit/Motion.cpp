#include "ui/kit/Motion.h"

#include "ui/kit/Metrics.h"

#include <QEvent>
#include <QWidget>

namespace vellmark::kit {

namespace {
bool reduced = false;
} // namespace

bool motion::isReduced() {
    return reduced;
}
void motion::setReduced(bool isReduced) {
    reduced = isReduced;
}

Transition::Transition(QWidget* owner) : QObject(owner), owner_(owner) {
    owner_->installEventFilter(this);
    connect(&animation_, &QVariantAnimation::valueChanged, this, [this](const QVariant& value) {
        value_ = value.toDouble();
        owner_->update();
    });
}

void Transition::moveTo(double target, int milliseconds, QEasingCurve::Type easing) {
    if (target == target_) {
        return;
    }
    if (milliseconds <= 0 || motion::isReduced() || !owner_->isVisible()) {
        jumpTo(target);
        return;
    }
    animation_.stop();
    target_ = target;
    animation_.setStartValue(value_);
    animation_.setEndValue(target);
    animation_.setDuration(milliseconds);
    animation_.setEasingCurve(easing);
    animation_.start();
}

void Transition::jumpTo(double target) {
    animation_.stop();
    target_ = target;
    value_ = target;
    owner_->update();
}

bool Transition::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Hide && isRunning()) {
        jumpTo(target_);
    }
    return QObject::eventFilter(watched, event);
}

Turn::Turn(QWidget* owner) : QObject(owner), owner_(owner) {
    owner_->installEventFilter(this);
    animation_.setStartValue(0.0);
    animation_.setEndValue(360.0);
    animation_.setDuration(duration::refreshTurn);
    connect(&animation_, &QVariantAnimation::valueChanged, this, [this](const QVariant& value) {
        degrees_ = value.toDouble();
        owner_->update();
    });
}

void Turn::setTurning(bool isTurning) {
    if (isTurning == isTurning_) {
        return;
    }
    isTurning_ = isTurning;
    if (isTurning) {
        begin();
    } else if (animation_.state() == QAbstractAnimation::Running) {
        animation_.setLoopCount(animation_.currentLoop() + 1);
    }
    owner_->update();
}

void Turn::begin() {
    if (motion::isReduced() || !owner_->isVisible()) {
        return;
    }
    animation_.setLoopCount(-1);
    if (animation_.state() != QAbstractAnimation::Running) {
        animation_.start();
    }
}

bool Turn::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Hide) {
        animation_.stop();
        degrees_ = 0;
    } else if (event->type() == QEvent::Show && isTurning_) {
        begin();
    }
    return QObject::eventFilter(watched, event);
}

} // namespace vellmark::kit
