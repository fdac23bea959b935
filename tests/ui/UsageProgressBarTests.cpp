#include "ui/kit/UsageProgressBar.h"

#include <gtest/gtest.h>

namespace vellmark::kit {
namespace {

TEST(UsageProgressBar, FillsItsShareAndAtLeastAFullRound) {
    struct Case {
        double share;
        double filled;
    };
    for (const Case& sample : {Case{50, 100}, Case{100, 200}, Case{140, 200}, Case{1, 8},
                               Case{3.9, 8}, Case{4.1, 8.2}, Case{0, 0}, Case{-3, 0}}) {
        const BarShape shape = barShape(200, 8, sample.share, std::nullopt);
        EXPECT_NEAR(shape.fill.boundingRect().width(), sample.filled, 0.01) << sample.share;
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
