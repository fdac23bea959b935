#include "ui/kit/Bar.h"

#include <QImage>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

namespace vellmark::kit {
namespace {

TEST(Bar, FillsItsShareAndAtLeastAFullRound) {
    const std::pair<double, double> cases[] = {{50, 100}, {100, 200}, {140, 200}, {1, 8},
                                               {3.9, 8},  {4.1, 8.2}, {0, 0},     {-3, 0}};
    for (const auto& [share, filled] : cases) {
        const BarShape shape = barShape(200, 8, share, std::nullopt);
        EXPECT_NEAR(shape.fill.boundingRect().width(), filled, 0.01) << share;
        EXPECT_FALSE(shape.mark.has_value());
    }
}

TEST(Bar, StandsTheMarkAtItsShareWithAPointOfGroundOnEachSide) {
    const BarShape shape = barShape(200, 6, 78, 29.0);
    ASSERT_TRUE(shape.mark.has_value());
    EXPECT_EQ(*shape.mark, QRectF(57, 0, 2, 12));
    const double middle = 6;
    EXPECT_TRUE(shape.fill.contains(QPointF(55.5, middle)));
    EXPECT_FALSE(shape.fill.contains(QPointF(56.5, middle)));
    EXPECT_FALSE(shape.track.contains(QPointF(59.5, middle)));
    EXPECT_TRUE(shape.track.contains(QPointF(60.5, middle)));
    // It stays within the bar.
    EXPECT_EQ(barShape(200, 6, 50, 0.0).mark->left(), 0);
    EXPECT_EQ(barShape(200, 6, 50, 100.0).mark->right(), 200);
}

class BarPixels : public ::testing::Test {
protected:
    static constexpr int barHeight = 8;
    static constexpr int wide = 200;
    /// The colour at `x` of a bar on white, in the middle of its height.
    QColor pixel(const BarLook& look, int x) {
        Bar bar(barHeight);
        bar.resize(wide, bar.sizeHint().height());
        bar.setLook(look);
        QImage image(bar.size(), QImage::Format_RGB32);
        image.fill(Qt::white);
        bar.render(&image, {}, {}, QWidget::DrawChildren);
        return image.pixelColor(x, bar.height() / 2);
    }
    static QColor blended(const QColor& over, const QColor& under, double share) {
        const auto channel = [&](int above, int below) {
            return static_cast<int>(std::lround(above * share + below * (1 - share)));
        };
        return {channel(over.red(), under.red()), channel(over.green(), under.green()),
                channel(over.blue(), under.blue())};
    }
    static int distance(const QColor& one, const QColor& other) {
        return std::max({std::abs(one.red() - other.red()), std::abs(one.green() - other.green()),
                         std::abs(one.blue() - other.blue())});
    }
};

TEST_F(BarPixels, OldFiguresAreFaintAndTheMarkIsInkInBothAppearances) {
    for (const auto appearance : {Theme::Appearance::light, Theme::Appearance::dark}) {
        Theme::setCurrent(appearance);
        for (const ColorRole role : {ColorRole::healthy, ColorRole::critical, ColorRole::none}) {
            BarLook look{.share = 70, .mark = 40.0, .color = role};
            const QColor track = pixel(look, 180);
            EXPECT_LE(distance(pixel(look, 20), color(role)), 1);
            look.isStale = true;
            EXPECT_LE(distance(pixel(look, 20), blended(color(role), track, 0.45)), 2);
        }
        for (const bool isStale : {false, true}) {
            const BarLook look{.share = 70, .mark = 40.0, .isStale = isStale};
            EXPECT_LE(distance(pixel(look, 80), color(ColorRole::ink)), 1) << isStale;
            EXPECT_EQ(pixel(look, 78), QColor(Qt::white)) << "ground beside the mark";
        }
    }
    Theme::setCurrent(Theme::Appearance::light);
}

} // namespace
} // namespace vellmark::kit
