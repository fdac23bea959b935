#pragma once

#include <QColor>

class QPainter;
class QRectF;
class QWidget;

namespace vellmark::kit {

/// A control whose ground changes under what stands on it while it is pointed at or pressed.
class ChangingGround {
public:
    virtual ~ChangingGround() = default;
    /// 0 at rest, 1 when changed, in between on the way.
    virtual double groundChange() const = 0;
};

/// The colour of tracks and bones in `widget`, which can be told from the ground that lies under
/// them at this moment.
QColor trackColor(const QWidget& widget);

/// One bone: stands in `widget` where a value will be while it is still being read.
void drawBone(QPainter& painter, const QWidget& widget, const QRectF& box);

} // namespace vellmark::kit
