#include "ui/kit/UsageProgressBar.h"

#include <gtest/gtest.h>

#include <utility>

namespace vellmark::kit {
namespace {

TEST(UsageProgressBar, FillsItsShareAndAtLeastAFullRound) {
    const std::pair<double, double> cases[] = {{50, 100}, {100, 200}, {140, 200}, {1, 8},
                                               {3.9, 8},  {4.1, 8.2}, {0, 0},     {-3, 0}};
    for (const auto& [share, filled] : cases) {
        const BarShape shape = barShape(200, 8, share, std::nullopt);
        EXPECT_NEAR(shape.fill.boundingRect().width(), filled, 0.01) << share;
        EXPECT_FALSE(shape.mark.has_value());
    }
}

TEST(UsageProgressBar, StandsTheMarkAtItsShareWithAPointOfGroundOnEachSide) {
    const BarShape shape = barShape(200, 6, 78, 29.0);
    ASSERT_TRUE(shape.mark.has_value());
    EXPECT_EQ(*shape.mark, QRectF(57, 0, 2, 12));
    const double middle = 6;
    EXPECT_TRUE(shape.fill.contains(QPointF(55.5, middle)));
    EXPECT_FALSE(shape.fill.contains(QPointF(56.5, middle)));
    EXPECT_FALSE(shape.track.contains(QPointF(59.5, middle)));
    EXPECT_TRUE(shape.track.contains(QPointF(60.5, middle)));
}

TEST(UsageProgressBar, KeepsTheMarkWithinTheBar) {
    EXPECT_EQ(barShape(200, 6, 50, 0.0).mark->left(), 0);
    EXPECT_EQ(barShape(200, 6, 50, 100.0).mark->right(), 200);
}

} // namespace
} // namespace vellmark::kit
