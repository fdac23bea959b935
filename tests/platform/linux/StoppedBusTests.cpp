#include "platform/SessionBus.h"
#include "platform/SingleInstance.h"
#include "platform/SystemAppearance.h"
#include "platform/Wake.h"
#include "platform/linux/BusConnection.h"
#include "platform/linux/PrivateBus.h"
#include "platform/linux/StatusNotifierItem.h"
#include "support/PollLoop.h"

#include <chrono>

namespace vellmark::tests {
namespace {

using Clock = std::chrono::steady_clock;

/// A bus that stops: it still takes connections and bytes, and never answers again.
class StoppedBusTest : public BusTest {
protected:
    std::unique_ptr<SingleInstance> claim(std::function<void()> onShow) {
        return claimSingleInstance(loop_, {.identifier = "app.vellmark.Test",
                                           .directory = directory_ / "support",
                                           .onShow = std::move(onShow)});
    }
    std::unique_ptr<StatusNotifierItem> makeItem() {
        return std::make_unique<StatusNotifierItem>(
            loop_, "vellmark", "Vellmark",
            StatusNotifierItem::Handlers{.activate = [](int, int) {},
                                         .menuItemChosen = [](const std::string&) {},
                                         .hostChanged = [](bool) {}});
    }

    TemporaryDirectory directory_;
    PollLoop loop_;
};

// Two waits at most; the rest is for a loaded machine.
constexpr std::chrono::duration<double> patience = 2 * busAnswerLimit + std::chrono::seconds(4);

TEST_F(StoppedBusTest, ALaunchGoesOnAsWithoutABus) {
    bus_->stop();
    const auto start = Clock::now();
    leaveOutUnansweringSessionBus();
    int shown = 0;
    const auto instance = claim([&] { ++shown; });
    EXPECT_TRUE(instance);
    EXPECT_FALSE(claim([] {}));
    EXPECT_FALSE(makeItem()->isOnBus());
    EXPECT_EQ(observeSystemAppearance(loop_, [] {})->colorScheme(), ColorScheme::noPreference);
    EXPECT_FALSE(observeWake(loop_, [] {}));
    EXPECT_LT(Clock::now() - start, patience);
    EXPECT_TRUE(loop_.turnUntil([&] { return shown == 1; }));
}

TEST_F(StoppedBusTest, ClaimsWithoutTheBusWhenThatStopsAfterLettingIn) {
    const auto connection = BusConnection::session(loop_);
    ASSERT_TRUE(connection);
    bus_->stop();
    const auto start = Clock::now();
    EXPECT_TRUE(claim([] {}));
    EXPECT_FALSE(makeItem()->isOnBus());
    EXPECT_LT(Clock::now() - start, patience);
}

TEST_F(StoppedBusTest, DoesNotHoldUpAnItemThatHasMuchToTell) {
    auto item = makeItem();
    ASSERT_TRUE(item->isOnBus());
    bus_->stop();
    const auto start = Clock::now();
    // More than the system takes for a reader that does not read.
    for (int change = 0; change < 40000; ++change) {
        item->setToolTip(std::to_string(change));
    }
    item.reset();
    EXPECT_LT(Clock::now() - start, patience);
}

} // namespace
} // namespace vellmark::tests
