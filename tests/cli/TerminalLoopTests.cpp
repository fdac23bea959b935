#include "cli/TerminalLoop.h"

#include <gtest/gtest.h>

#include <csignal>
#include <string>
#include <thread>
#include <unistd.h>

namespace vellmark {
namespace {

TEST(TerminalLoop, RunsPostsOfOtherThreadsInTheirOrder) {
    TerminalLoop loop;
    std::string order;
    std::thread worker([&] {
        for (char letter = 'a'; letter <= 'z'; ++letter) {
            loop.post([&order, letter] { order += letter; });
        }
        loop.post([&] { loop.stop(7); });
    });
    EXPECT_EQ(loop.run(), 7);
    worker.join();
    EXPECT_EQ(order, "abcdefghijklmnopqrstuvwxyz");
}

TEST(TerminalLoop, FiresTimersInTheOrderOfTheirTimesAndNotTheCancelledOnes) {
    TerminalLoop loop;
    std::string order;
    MainExecutor::Timer cancelled = 0;
    loop.postAfter(Seconds(0.03), Seconds(0), [&] { loop.stop(0); });
    cancelled = loop.postAfter(Seconds(0.02), Seconds(0), [&] { order += 'x'; });
    loop.postAfter(Seconds(0.01), Seconds(0), [&] {
        order += 'b';
        loop.cancel(cancelled);
    });
    loop.postAfter(Seconds(0), Seconds(0), [&] { order += 'a'; });
    loop.run();
    EXPECT_EQ(order, "ab");
}

TEST(TerminalLoop, EndsWithTheConventionalStatusOfASignalAndRestoresItsEffect) {
    struct sigaction before {};
    sigaction(SIGTERM, nullptr, &before);
    {
        TerminalLoop loop;
        loop.post([] { kill(getpid(), SIGTERM); });
        EXPECT_EQ(loop.run(), 128 + SIGTERM);
        EXPECT_EQ(loop.endingSignal(), SIGTERM);
    }
    struct sigaction after {};
    sigaction(SIGTERM, nullptr, &after);
    EXPECT_EQ(after.sa_handler, before.sa_handler);
}

TEST(TerminalLoop, ASignalGoesBeforeWhatIsPosted) {
    TerminalLoop loop;
    raise(SIGINT);
    loop.post([&loop] { loop.stop(0); });
    EXPECT_EQ(loop.run(), 128 + SIGINT);
}

TEST(TerminalLoop, ACallbackMayEndAnotherWatch) {
    TerminalLoop loop;
    int ends[2] = {-1, -1};
    ASSERT_EQ(pipe(ends), 0);
    ASSERT_EQ(write(ends[1], "x", 1), 1);
    std::unique_ptr<DescriptorWatch> first;
    std::unique_ptr<DescriptorWatch> second;
    int calls = 0;
    first = loop.watch(ends[0], [&] {
        ++calls;
        second.reset();
        loop.stop(0);
    });
    second = loop.watch(ends[0], [&] { ++calls; });
    loop.run();
    EXPECT_EQ(calls, 1);
    close(ends[0]);
    close(ends[1]);
}

} // namespace
} // namespace vellmark
