#include "ui/kit/Icon.h"
#include "ui/kit/PathText.h"

#include <gtest/gtest.h>

#include <utility>

namespace vellmark::kit {
namespace {

TEST(PathText, HasTheBoundsOfItsShape) {
    const std::pair<const char*, QRectF> cases[] = {
        {"M1 2L5 6", {1, 2, 4, 4}},
        {"m1,2 4,4", {1, 2, 4, 4}},
        {"M2 3h4v5H1V0", {1, 0, 5, 8}},
        // A full circle of two arcs, with and without blanks between the flags.
        {"M14 8a6 6 0 1 1-12 0a6 6 0 1 1 12 0z", {2, 2, 12, 12}},
        {"M14 8a6 6 0 11-12 0a6 6 0 1112 0z", {2, 2, 12, 12}},
        // The smaller and the larger part, both ways round.
        {"M0 0A5 5 0 0 1 5 5", {0, 0, 5, 5}},
        {"M0 0A5 5 0 1 1 5 5", {0, -5, 10, 10}},
        {"M0 0A5 5 0 0 0 5 5", {0, 0, 5, 5}},
        {"M0 0A5 5 0 1 0 5 5", {-5, 0, 10, 10}},
        // Radii that are too small grow until the arc reaches.
        {"M0 0A1 1 0 0 1 10 0", {0, -5, 10, 5}},
        {"M0 0A0 3 0 0 1 4 4", {0, 0, 4, 4}},
        {"M0 0C0 4 4 4 4 0S8-4 8 0", {0, -3, 8, 6}},
        {"M0 0Q2 4 4 0T8 0", {0, -2, 8, 4}},
        {"M.5.5l1.5-1.5", {0.5, -1, 1.5, 1.5}},
    };
    for (const auto& [text, expected] : cases) {
        const auto path = pathFromText(text);
        ASSERT_TRUE(path.has_value()) << text;
        const QRectF bounds = path->boundingRect();
        EXPECT_NEAR(bounds.left(), expected.left(), 0.01) << text;
        EXPECT_NEAR(bounds.top(), expected.top(), 0.01) << text;
        EXPECT_NEAR(bounds.right(), expected.right(), 0.01) << text;
        EXPECT_NEAR(bounds.bottom(), expected.bottom(), 0.01) << text;
    }
}

TEST(PathText, RefusesWhatIsNoPath) {
    for (const char* text :
         {"L1 1", "M1", "M1 1X2", "M1 1L", "M0 0a1 1 0 2 0 1 1", "1 1", "M1 1 -"}) {
        EXPECT_FALSE(pathFromText(text).has_value()) << text;
    }
    EXPECT_TRUE(pathFromText("  ")->isEmpty());
}

TEST(Icon, EveryIconIsDrawnWithinItsGrid) {
    ASSERT_GE(iconNames().size(), 27U);
    for (const std::string_view name : iconNames()) {
        const QRectF bounds = iconPath(name).boundingRect();
        EXPECT_FALSE(iconPath(name).isEmpty()) << name;
        EXPECT_TRUE(QRectF(1, 1, 14, 14).contains(bounds)) << name;
    }
    EXPECT_TRUE(iconPath("no.such.icon").isEmpty());
}

} // namespace
} // namespace vellmark::kit
