#include "ui/QtEnvironment.h"
#include "ui/kit/Motion.h"

#include <gtest/gtest.h>

#include <cmath>

namespace vellmark::kit {
namespace {

class Motion : public ::testing::Test {
protected:
    void TearDown() override { motion::setReduced(false); }
    QWidget window;
};

TEST_F(Motion, AnArrowTurnsOnlyWhileItCanBeSeenAndFinishesItsTurn) {
    Turn turn(&window);
    turn.setTurning(true);
    EXPECT_FALSE(turn.isRunning());
    window.show();
    EXPECT_TRUE(turn.isRunning());
    ASSERT_TRUE(tests::waitUntil([&] { return turn.degrees() > 20; }));
    turn.setTurning(false);
    EXPECT_TRUE(turn.isRunning());
    ASSERT_TRUE(tests::waitUntil([&] { return !turn.isRunning(); }));
    EXPECT_EQ(std::fmod(turn.degrees(), 360), 0);
    turn.setTurning(true);
    window.hide();
    EXPECT_FALSE(turn.isRunning());
}

TEST_F(Motion, AValueMovesOnlyBeforeTheUsersEyes) {
    Transition value(&window);
    value.moveTo(1, 240);
    EXPECT_EQ(value.value(), 1);
    window.show();
    value.moveTo(0, 240);
    EXPECT_TRUE(value.isRunning());
    ASSERT_TRUE(tests::waitUntil([&] { return !value.isRunning(); }));
    EXPECT_EQ(value.value(), 0);
    value.moveTo(1, 240);
    window.hide();
    EXPECT_EQ(value.value(), 1);
    EXPECT_FALSE(value.isRunning());
}

TEST_F(Motion, NothingMovesWhereTheUserWantsNoMotion) {
    motion::setReduced(true);
    window.show();
    Transition value(&window);
    value.moveTo(1, 240);
    EXPECT_EQ(value.value(), 1);
    Turn turn(&window);
    turn.setTurning(true);
    EXPECT_FALSE(turn.isRunning());
    EXPECT_TRUE(turn.isTurning());
}

} // namespace
} // namespace vellmark::kit
