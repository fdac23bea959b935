#pragma once

class QPainter;
class QRectF;

namespace vellmark::kit {

/// One bone: stands where a value will be while it is still being read.
void drawBone(QPainter& painter, const QRectF& box);

} // namespace vellmark::kit
