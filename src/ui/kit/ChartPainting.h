#pragma once

#include "ui/kit/ChartLook.h"

#include <QRectF>

class QPainter;
class QPen;

namespace vellmark::kit {

/// Where the parts of a chart stand in a widget.
struct ChartLayout {
    /// The lines; x and y of the look are shares of it.
    QRectF plot;
    /// To where the lines across reach; behind it stand the side's labels.
    double gridRight = 0;

    QPointF place(QPointF share) const {
        return {plot.left() + share.x() * plot.width(), plot.bottom() - share.y() * plot.height()};
    }
    double share(double x) const { return (x - plot.left()) / plot.width(); }
};

/// With which a line of the chart is drawn.
QPen chartPen(const ChartLook& look, ChartLook::Stroke stroke);

ChartLayout chartLayout(const ChartLook& look, QSizeF size);

/// Everything but the read-out. `ground` is the colour that it stands on.
void drawChart(QPainter& painter, const ChartLook& look, const ChartLayout& layout,
               ColorRole ground);
/// The ink line, the dots and the words, on the side of the line that has more room.
void drawChartReadout(QPainter& painter, const ChartLook& look, const ChartLayout& layout,
                      const ChartReadoutLook& readout, ColorRole ground);

} // namespace vellmark::kit
