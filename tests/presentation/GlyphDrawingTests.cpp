#include "presentation/GlyphDrawing.h"

#include <gtest/gtest.h>

#include <ostream>

namespace vellmark {

// Named by gtest when an expectation fails.
void PrintTo(const GlyphMark& mark, std::ostream* out) {
    *out << "kind " << static_cast<int>(mark.kind) << " at " << mark.centerX << ", " << mark.centerY
         << " radius " << mark.radius << " width " << mark.lineWidth << " alpha " << mark.alpha
         << " from " << mark.startAngle << " to " << mark.endAngle;
}

namespace tests {
namespace {

using Kind = GlyphMark::Kind;

GlyphMark ring(double alpha) {
    return {.kind = Kind::strokedCircle,
            .centerX = 9,
            .centerY = 9,
            .radius = 8,
            .lineWidth = 1.75,
            .alpha = alpha};
}

GlyphMark disc(double alpha) {
    return {.kind = Kind::filledCircle, .centerX = 9, .centerY = 9, .radius = 6, .alpha = alpha};
}

GlyphMark arc(double endAngle) {
    GlyphMark mark = ring(1);
    mark.kind = Kind::strokedArc;
    mark.startAngle = 90;
    mark.endAngle = endAngle;
    return mark;
}

GlyphMark pie(double endAngle) {
    GlyphMark mark = disc(1);
    mark.kind = Kind::filledPie;
    mark.startAngle = 90;
    mark.endAngle = endAngle;
    return mark;
}

TEST(GlyphDrawing, DrawsTheMarksOfEighteenPoints) {
    struct Case {
        std::optional<double> used;
        std::optional<double> elapsed;
        std::vector<GlyphMark> marks;
    };
    const std::vector<Case> cases{
        {{}, {}, {ring(0.25), disc(0.25)}},
        {2.5, 0, {ring(0.25), disc(0.25)}},
        {3.0, 25, {ring(0.25), arc(0), disc(0.25), pie(90 - 10.8)}},
        {50, {}, {ring(0.25), disc(0.25), pie(-90)}},
        {99.95, 99.9, {ring(0.25), ring(1), disc(0.25), disc(1)}},
        {75, 100, {ring(0.25), ring(1), disc(0.25), pie(-180)}},
    };
    for (const Case& each : cases) {
        const MenuBarGlyph glyph{.usedPercent = each.used, .elapsedPercent = each.elapsed};
        const std::vector<GlyphMark> marks = glyphDrawing(glyph, 18);
        ASSERT_EQ(marks.size(), each.marks.size());
        for (std::size_t index = 0; index < marks.size(); ++index) {
            GlyphMark expected = each.marks[index];
            EXPECT_NEAR(marks[index].endAngle, expected.endAngle, 1e-9);
            expected.endAngle = marks[index].endAngle;
            EXPECT_EQ(marks[index], expected);
        }
    }
}

TEST(GlyphDrawing, ScalesWithTheSide) {
    const MenuBarGlyph glyph{.usedPercent = 40, .elapsedPercent = 40};
    for (const GlyphMark& mark : glyphDrawing(glyph, 44)) {
        EXPECT_DOUBLE_EQ(mark.centerX, 22);
        EXPECT_DOUBLE_EQ(mark.centerY, 22);
        const bool isRing = mark.lineWidth > 0;
        EXPECT_NEAR(mark.radius, (isRing ? 8 : 6) * 44.0 / 18, 1e-9);
        EXPECT_LE(mark.radius + mark.lineWidth / 2, 22);
    }
}

TEST(GlyphDrawing, KeepsTheDotInsideTheIcon) {
    for (const double side : {16.0, 22.0, 24.0, 64.0}) {
        const TrayIconLayout layout = trayIconLayout(side);
        EXPECT_GT(layout.dotRadius, side / 10) << side;
        EXPECT_GE(layout.erasedRadius - layout.dotRadius, 1) << side;
        EXPECT_LE(layout.dotCenterX + layout.dotRadius, side) << side;
        EXPECT_GE(layout.dotCenterY - layout.dotRadius, 0) << side;
    }
}

} // namespace
} // namespace tests
} // namespace vellmark
