#pragma once

#include "ui/kit/Theme.h"

#include <QMarginsF>
#include <QRectF>

class QPainter;

namespace vellmark::kit {

/// The popover's shadow around `box`, whose corners have the radius `cornerRadius`. Shadows
/// are blurred once for an appearance and scale, and stretched to any size afterwards.
void drawPopoverShadow(QPainter& painter, const QRectF& box, double cornerRadius);

/// The smaller shadow of a box that says what lies under the pointer in a chart.
void drawReadoutShadow(QPainter& painter, const QRectF& box, double cornerRadius);

/// How far the popover's shadow reaches beyond its box on each side.
QMarginsF popoverShadowReach();

} // namespace vellmark::kit
