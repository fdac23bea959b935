#include "platform/Wake.h"
#include "platform/linux/BusLibrary.h"
#include "platform/linux/PrivateBus.h"
#include "support/PollLoop.h"

#include <chrono>
#include <memory>

namespace vellmark::tests {
namespace {

/// The login manager, as far as it tells of sleep.
class Logind {
public:
    Logind()
        : connection_(sdbus::createSystemBusConnection()),
          manager_(
              sdbus::createObject(*connection_, sdbus::ObjectPath("/org/freedesktop/login1"))) {
        bus::Interface(*manager_, interface).signal<bool>("PrepareForSleep").publish();
        connection_->requestName(bus::ServiceName("org.freedesktop.login1"));
    }

    void prepareForSleep(bool begins) {
        manager_->emitSignal("PrepareForSleep").onInterface(interface).withArguments(begins);
    }

private:
    static constexpr auto interface = "org.freedesktop.login1.Manager";

    std::unique_ptr<sdbus::IConnection> connection_;
    std::unique_ptr<sdbus::IObject> manager_;
};

class WakeTest : public BusTest {
protected:
    PollLoop loop_;
    int wakes_ = 0;
};

TEST_F(WakeTest, IsToldWhenSleepEndsAndNotWhenItBegins) {
    Logind logind;
    const auto observer = observeWake(loop_, [this] { ++wakes_; });
    ASSERT_TRUE(observer);
    for (int night = 1; night <= 2; ++night) {
        logind.prepareForSleep(true);
        loop_.turn(std::chrono::milliseconds(100));
        EXPECT_EQ(wakes_, night - 1);
        logind.prepareForSleep(false);
        ASSERT_TRUE(loop_.turnUntil([&] { return wakes_ >= night; }));
        EXPECT_EQ(wakes_, night);
    }
}

TEST_F(WakeTest, LeavesItToTheClocksWhereNobodyTells) {
    EXPECT_FALSE(observeWake(loop_, [] {}));
}

} // namespace
} // namespace vellmark::tests
