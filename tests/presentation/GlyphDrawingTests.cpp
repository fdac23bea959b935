#include "presentation/GlyphDrawing.h"

#include <gtest/gtest.h>

#include <cmath>

namespace vellmark::tests {
namespace {

/// Such as "faint ring, arc to 0": an arc and a pie begin at the top, 90.
std::string described(const std::vector<GlyphMark>& marks) {
    const char* const kinds[] = {"ring", "arc to ", "disc", "pie to "};
    std::string text;
    for (const GlyphMark& mark : marks) {
        text += (text.empty() ? "" : ", ") + std::string(mark.alpha < 1 ? "faint " : "") +
                kinds[static_cast<int>(mark.kind)];
        if (mark.kind == GlyphMark::Kind::strokedArc || mark.kind == GlyphMark::Kind::filledPie) {
            EXPECT_EQ(mark.startAngle, 90);
            text += std::to_string(std::lround(mark.endAngle));
        }
    }
    return text;
}

TEST(GlyphDrawing, ShowsThePassedTimeAroundTheUsedShare) {
    const std::tuple<std::optional<double>, std::optional<double>, const char*> cases[] = {
        {{}, {}, "faint ring, faint disc"},
        {2.5, 0, "faint ring, faint disc"},
        {3.0, 25, "faint ring, arc to 0, faint disc, pie to 79"},
        {50, {}, "faint ring, faint disc, pie to -90"},
        {99.95, 99.9, "faint ring, ring, faint disc, disc"},
    };
    for (const auto& [used, elapsed, marks] : cases) {
        const MenuBarGlyph glyph{.usedPercent = used, .elapsedPercent = elapsed};
        EXPECT_EQ(described(glyphDrawing(glyph, 18)), marks);
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
} // namespace vellmark::tests
