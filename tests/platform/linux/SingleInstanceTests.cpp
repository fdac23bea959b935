#include "platform/SingleInstance.h"
#include "platform/linux/PrivateBus.h"
#include "support/PollLoop.h"

#include <cstdlib>
#include <optional>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace vellmark::tests {
namespace {

/// With a bus, or (false) without one.
class SingleInstanceTest : public testing::TestWithParam<bool> {
protected:
    SingleInstanceTest() {
        ::setenv("DBUS_SESSION_BUS_ADDRESS",
                 GetParam() ? bus_.emplace().address().c_str() : "unix:path=/nonexistent", 1);
        // Forked before anything here knows a bus: a connection must not be used by two processes.
        if (::pipe(order_) != 0) {
            throw std::runtime_error("no pipe");
        }
        launch_ = ::fork();
        if (launch_ == 0) {
            char go = 0;
            (void)!::read(order_[0], &go, 1);
            PollLoop loop;
            ::_exit(claim(
                        loop, [] {}, {}, go == forPopover, laterToken)
                        ? 1
                        : 0);
        }
    }
    ~SingleInstanceTest() override {
        ::close(order_[0]);
        ::close(order_[1]);
        ::unsetenv("DBUS_SESSION_BUS_ADDRESS");
    }

    static constexpr char forWindow = 'w';
    static constexpr char forPopover = 'p';
    static constexpr auto laterToken = "later_TIME4711";

    std::unique_ptr<SingleInstance> claim(PollLoop& loop, std::function<void()> onShow,
                                          std::function<void()> onShowPopover = {},
                                          bool asksForPopover = false,
                                          const std::string& token = {}) {
        return claimSingleInstance(
            loop, {.identifier = "app.vellmark.Test",
                   .directory = directory_ / "support",
                   .onShow = std::move(onShow),
                   .onShowPopover = std::move(onShowPopover),
                   .asksForPopover = asksForPopover,
                   .activationToken = token,
                   .onActivationToken = [this](const std::string& given) { token_ = given; }});
    }

    /// A second launch; true when it found itself alone.
    bool launchAgain(PollLoop& loop, char asksFor = forWindow) {
        (void)!::write(order_[1], &asksFor, 1);
        int status = -1;
        EXPECT_TRUE(
            loop.turnUntil([&] { return ::waitpid(launch_, &status, WNOHANG) == launch_; }));
        return WIFEXITED(status) && WEXITSTATUS(status) == 1;
    }

    TemporaryDirectory directory_;
    std::string token_;
    std::optional<PrivateBus> bus_;
    int order_[2] = {-1, -1};
    pid_t launch_ = 0;
};

TEST_P(SingleInstanceTest, LaterLaunchShowsTheFirst) {
    PollLoop loop;
    int shown = 0;
    std::string tokenWhenShown;
    const auto first = claim(loop, [&] {
        ++shown;
        tokenWhenShown = token_;
    });
    ASSERT_TRUE(first);
    EXPECT_FALSE(launchAgain(loop));
    EXPECT_TRUE(loop.turnUntil([&] { return shown > 0; }));
    EXPECT_EQ(shown, 1);
    EXPECT_EQ(tokenWhenShown, laterToken);
}

TEST_P(SingleInstanceTest, LaterLaunchAsksTheFirstForItsPopover) {
    PollLoop loop;
    int shown = 0;
    int popovers = 0;
    const auto first = claim(
        loop, [&] { ++shown; }, [&] { ++popovers; });
    ASSERT_TRUE(first);
    EXPECT_FALSE(launchAgain(loop, forPopover));
    EXPECT_TRUE(loop.turnUntil([&] { return popovers > 0; }));
    EXPECT_EQ(shown, 0);
    EXPECT_EQ(token_, laterToken);
}

TEST_P(SingleInstanceTest, IsFreeAfterTheFirstHasGone) {
    PollLoop loop;
    claim(loop, [] {}).reset();
    EXPECT_TRUE(launchAgain(loop));
}

INSTANTIATE_TEST_SUITE_P(WithAndWithoutABus, SingleInstanceTest, testing::Bool());

} // namespace
} // namespace vellmark::tests
