#include "app/linux/EdgeStripPlacement.h"

#include <gtest/gtest.h>

namespace vellmark::tests {
namespace {

constexpr QSize strip(76, 32);
const ScreenArea laptop{"eDP-1", {0, 24, 1280, 776}};
const ScreenArea desk{"HDMI-1", {1280, 0, 1920, 1080}};
const std::vector<ScreenArea> both{laptop, desk};

QRect dropAt(int x, int y) {
    return {{x, y}, strip};
}

TEST(EdgeStripPlacement, DocksToTheNearestEdgeOfTheScreenItIsDroppedOn) {
    const std::tuple<QRect, std::string, QPoint> cases[] = {
        {dropAt(1000, 300), "eDP-1", {1204, 300}},
        {dropAt(100, 300), "eDP-1", {0, 300}},
        {dropAt(1300, 500), "HDMI-1", {1280, 500}},
        {dropAt(3000, 500), "HDMI-1", {3124, 500}},
        // Partly or wholly off all screens: below the lower one of them, over the panel.
        {dropAt(3190, 500), "HDMI-1", {3124, 500}},
        {dropAt(600, 1000), "eDP-1", {0, 768}},
        {dropAt(1000, -4), "eDP-1", {1204, 24}},
    };
    for (const auto& [dropped, screen, expected] : cases) {
        const EdgeStripPlace place = edgeStripPlace(dropped, both);
        EXPECT_EQ(place.screen, screen);
        const QRect shown = edgeStripGeometry(place, strip, both);
        EXPECT_NEAR(shown.y(), expected.y(), 1);
        EXPECT_EQ(shown.x(), expected.x());
        // It does not creep away with every start.
        EXPECT_EQ(edgeStripGeometry(edgeStripPlace(shown, both), strip, both), shown);
    }
}

TEST(EdgeStripPlacement, WaitsOnThePrimaryScreenForItsOwn) {
    const EdgeStripPlace place = edgeStripPlace(dropAt(3000, 1030), both);
    EXPECT_EQ(edgeStripGeometry(place, strip, {laptop}).right(), 1279);
    EXPECT_TRUE(laptop.available.contains(edgeStripGeometry(place, strip, {laptop})));
    EXPECT_EQ(edgeStripGeometry(place, strip, both).right(), 3199);
    // Before it was ever put anywhere.
    EXPECT_EQ(edgeStripGeometry({}, strip, {desk, laptop}).right(), 3199);
    EXPECT_EQ(edgeStripGeometry({}, strip, {{"tiny", {0, 0, 60, 20}}}).topLeft(), QPoint(-16, 0));
}

} // namespace
} // namespace vellmark::tests
