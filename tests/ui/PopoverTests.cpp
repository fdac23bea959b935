#include "screenshots/SampleStates.h"
#include "ui/QtEnvironment.h"
#include "ui/popover/AgentUsagePopoverView.h"
#include "ui/popover/Popover.h"
#include "ui/popover/PopoverPlacement.h"

#include <QAccessible>
#include <QGuiApplication>
#include <QScreen>
#include <QWindow>
#include <gtest/gtest.h>

namespace vellmark::tests {
namespace {

TEST(PopoverPlacement, StaysNearTheItemAndOnTheScreen) {
    const QRect available(0, 24, 1440, 852);
    constexpr QSize usual(430, 675);
    const std::tuple<const char*, QRect, QSize, QPoint> cases[] = {
        {"menu bar", {700, 0, 40, 24}, usual, {505, 32}},
        {"right edge", {1400, 0, 40, 24}, usual, {1002, 32}},
        {"panel below", {700, 876, 40, 24}, usual, {505, 193}},
        {"panel at the side", {1440, 400, 32, 32}, usual, {1002, 79}},
        {"point", {300, 150, 0, 0}, {430, 300}, {85, 156}},
        {"higher than the screen", {700, 0, 40, 24}, {430, 900}, {505, 32}},
    };
    for (const auto& [name, anchor, size, expected] : cases) {
        const QSize shown(size.width(), std::min(size.height(), 852 - 16));
        const QRect place =
            popoverPlacement(anchor, size, AgentUsagePopoverView::tallest, available);
        EXPECT_EQ(place, QRect(expected, shown)) << name;
        EXPECT_FALSE(place.intersects(anchor)) << name;
    }
}

// A click at the same place again must meet the strip, which closes the popover, and nothing in it.
TEST(PopoverPlacement, NeverCoversTheStripAndKeepsItsSide) {
    constexpr QSize strip(76, 32);
    for (const QSize screen : {QSize(1920, 1080), QSize(1280, 800), QSize(1366, 768),
                               QSize(1280, 720), QSize(1024, 600)}) {
        const QRect available(QPoint(0, 0), screen);
        for (const int x : {0, screen.width() - strip.width()}) {
            for (int y = 0; y <= screen.height() - strip.height(); ++y) {
                const QRect anchor({x, y}, strip);
                const auto place = [&](int height) {
                    return popoverPlacement(anchor, {430, height}, AgentUsagePopoverView::tallest,
                                            available);
                };
                const QRect tall = place(AgentUsagePopoverView::tallest);
                const QRect low = place(257);
                ASSERT_FALSE(tall.intersects(anchor)) << screen.height() << " " << y;
                ASSERT_FALSE(low.intersects(anchor)) << screen.height() << " " << y;
                ASSERT_GE(tall.height(), std::min(screen.height() - 16, 681) - 86) << y;
                ASSERT_EQ(tall.left(), low.left()) << screen.height() << " " << y;
            }
        }
    }
    // No room at any side: rather over the anchor than next to nothing.
    EXPECT_EQ(popoverPlacement({100, 150, 300, 20}, {430, 300}, 681, {0, 0, 480, 320}).height(),
              240);
}

class PopoverWindow : public ::testing::Test {
protected:
    PopoverWindow() { popover.setContent(content(samples::normal())); }
    static PopoverContent content(const UsageState& state) {
        return popoverContent(state, "overview", samples::now(), samples::words("en"));
    }
    bool click() {
        return popover.toggle(anchor, [this] { ++openings; });
    }

    RecordedActions recorded;
    Popover popover{recorded.actions()};
    QRect anchor{400, 0, 40, 24};
    int openings = 0;
};

TEST_F(PopoverWindow, TheClickThatClosedItFromOutsideDoesNotOpenItAgain) {
    EXPECT_TRUE(click());
    EXPECT_TRUE(popover.isVisible());
    popover.close();
    EXPECT_FALSE(click());
    EXPECT_FALSE(popover.isVisible());
    // A later click is meant.
    EXPECT_TRUE(waitUntil([this] { return click(); }));
    EXPECT_EQ(openings, 2);
    EXPECT_FALSE(click()) << "which closes it";
    EXPECT_FALSE(popover.isVisible());
}

TEST_F(PopoverWindow, ClosesByEscapeAndByAPressOnItsShadowAndTellsSo) {
    std::vector<bool> told;
    popover.onOpenChange = [&](bool isOpen) { told.push_back(isOpen); };
    click();
    EXPECT_TRUE(popover.windowHandle()->requestedFormat().hasAlpha()) << "for its shadow";
    pressKey(popover, Qt::Key_Escape);
    EXPECT_FALSE(popover.isVisible());
    popover.open(anchor);
    sendMouse(popover, QEvent::MouseButtonPress, {2, 2});
    EXPECT_FALSE(popover.isVisible());
    popover.open(anchor);
    popover.close();
    EXPECT_EQ(told, (std::vector{true, false, true, false, true, false}));
    popover.onOpenChange = nullptr;
}

TEST_F(PopoverWindow, IsAmongTheApplicationsWindowsForAssistiveSoftware) {
    click();
    QAccessibleInterface* told = QAccessible::queryAccessibleInterface(&popover);
    ASSERT_NE(told, nullptr);
    EXPECT_EQ(told->role(), QAccessible::Dialog);
    QAccessibleInterface* application = told->parent();
    ASSERT_NE(application, nullptr);
    const int index = application->indexOfChild(told);
    ASSERT_GE(index, 0);
    EXPECT_LT(index, application->childCount());
    EXPECT_EQ(application->child(index), told);
}

TEST_F(PopoverWindow, FollowsItsContentsHeightAndKeepsItsPlaceUnderTheItem) {
    click();
    const auto view = [this] {
        return QRect(popover.mapToGlobal(popover.view().pos()), popover.view().size());
    };
    const QRect before = view();
    popover.setContent(content(samples::healthy()));
    EXPECT_LT(view().height(), before.height());
    EXPECT_EQ(view().height(), popover.view().wantedHeight());
    EXPECT_EQ(view().left(), before.left());
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    EXPECT_TRUE(screen.adjusted(8, 8, -8, -8).contains(view()) || screen.height() < 700);
}

} // namespace
} // namespace vellmark::tests
