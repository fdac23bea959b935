#include "presentation/GlyphDrawing.h"

#include <algorithm>

namespace vellmark {
namespace {

/// The measures are those of a glyph of 18 points.
constexpr double designSide = 18;
constexpr double ringRadius = 8;
constexpr double ringWidth = 1.75;
constexpr double discRadius = 6;
constexpr double faint = 0.25;
/// A smaller used share is a speck, not a pie.
constexpr double leastPie = 3.0;
/// From here on the gap of an arc would be its own caps.
constexpr double complete = 99.9;
constexpr double top = 90;

double angleOf(double percent) {
    return top - 360 * percent / 100;
}

} // namespace

std::vector<GlyphMark> glyphDrawing(const MenuBarGlyph& glyph, double side) {
    const double scale = side / designSide;
    const GlyphMark ring{.kind = GlyphMark::Kind::strokedCircle,
                         .centerX = side / 2,
                         .centerY = side / 2,
                         .radius = ringRadius * scale,
                         .lineWidth = ringWidth * scale,
                         .alpha = faint};
    const GlyphMark disc{.kind = GlyphMark::Kind::filledCircle,
                         .centerX = side / 2,
                         .centerY = side / 2,
                         .radius = discRadius * scale,
                         .alpha = faint};

    const auto share = [](GlyphMark mark, GlyphMark::Kind partial, double percent) {
        mark.alpha = 1;
        if (percent < complete) {
            mark.kind = partial;
            mark.startAngle = top;
            mark.endAngle = angleOf(percent);
        }
        return mark;
    };

    std::vector<GlyphMark> marks{ring};
    if (glyph.elapsedPercent && *glyph.elapsedPercent > 0) {
        marks.push_back(share(ring, GlyphMark::Kind::strokedArc, *glyph.elapsedPercent));
    }
    marks.push_back(disc);
    if (glyph.usedPercent && *glyph.usedPercent >= leastPie) {
        marks.push_back(share(disc, GlyphMark::Kind::filledPie, *glyph.usedPercent));
    }
    return marks;
}

TrayIconLayout trayIconLayout(double side) {
    // The dot with the gap around it takes 42 % of the side; the gap is a pixel at least.
    const double erasedRadius = 0.42 * side / 2;
    const double gap = std::max(1.0, side / 14);
    const double dotRadius = erasedRadius - gap;
    return {.glyphSide = 0.92 * side,
            .dotCenterX = side - dotRadius,
            .dotCenterY = dotRadius,
            .dotRadius = dotRadius,
            .erasedRadius = erasedRadius};
}

} // namespace vellmark
