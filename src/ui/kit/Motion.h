#pragma once

#include <QEasingCurve>
#include <QObject>
#include <QVariantAnimation>

#include <functional>

class QWidget;

namespace vellmark::kit {

/// Whether things move: the user may have asked the system for reduced motion. Main thread.
namespace motion {
bool isReduced();
/// Set by whoever knows the system's wish; without it things move.
void setReduced(bool isReduced);
} // namespace motion

/// A number on its way from one value to another, for a widget that repaints at each step.
///
/// It arrives at once while the widget cannot be seen or motion is reduced, and costs nothing at
/// rest.
class Transition : public QObject {
public:
    explicit Transition(QWidget* owner);

    double value() const { return value_; }
    bool isRunning() const { return animation_.state() == QAbstractAnimation::Running; }
    void moveTo(double target, int milliseconds,
                QEasingCurve::Type easing = QEasingCurve::OutCubic);
    void jumpTo(double target);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* owner_;
    QVariantAnimation animation_;
    double value_ = 0;
    double target_ = 0;
};

/// The angle of an arrow that turns while something runs and finishes its turn afterwards. It rests
/// while its widget cannot be seen or motion is reduced.
class Turn : public QObject {
public:
    explicit Turn(QWidget* owner);

    void setTurning(bool isTurning);
    /// Something is under way, whether the arrow moves or not.
    bool isTurning() const { return isTurning_; }
    bool isRunning() const { return animation_.state() == QAbstractAnimation::Running; }
    double degrees() const { return degrees_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void begin();

    QWidget* owner_;
    QVariantAnimation animation_;
    bool isTurning_ = false;
    double degrees_ = 0;
};

} // namespace vellmark::kit
