#pragma once

#include "presentation/MenuBarGlyph.h"

#include <vector>

namespace vellmark {

/// One step of drawing the glyph, in one ink. Lengths are in the unit of the side; y grows upwards
/// from the lower left corner. Angles are degrees, 90 is the top, smaller is clockwise from there.
struct GlyphMark {
    enum class Kind {
        strokedCircle,
        strokedArc, ///< from `startAngle` clockwise to `endAngle`, with round caps
        filledCircle,
        filledPie, ///< centre, to the circle at `startAngle`, clockwise to `endAngle`, back
    };
    Kind kind = Kind::strokedCircle;
    double centerX = 0;
    double centerY = 0;
    double radius = 0;
    /// Of the two stroked kinds.
    double lineWidth = 0;
    double alpha = 1;
    double startAngle = 0;
    double endAngle = 0;

    bool operator==(const GlyphMark&) const = default;
};

/// The glyph as a list of marks, painted in order into a square of `side`.
std::vector<GlyphMark> glyphDrawing(const MenuBarGlyph& glyph, double side);

/// How a tray icon of `side` carries the coloured dot: a glyph at the upper left, a little smaller
/// than the icon, and at the lower right corner the dot, around which the glyph is erased.
struct TrayIconLayout {
    double glyphSide = 0;
    /// In the coordinates of GlyphMark, like the radii.
    double dotCenterX = 0;
    double dotCenterY = 0;
    double dotRadius = 0;
    double erasedRadius = 0;
    bool operator==(const TrayIconLayout&) const = default;
};
TrayIconLayout trayIconLayout(double side);

} // namespace vellmark
