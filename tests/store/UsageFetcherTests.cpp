#include "platform/ProgramEnd.h"
#include "store/StubProvider.h"
#include "store/UsageFetcher.h"
#include "support/HandTurnedExecutor.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <unistd.h>

namespace vellmark::tests {
namespace {

/// Ends the program, which would destroy what a thread that was left behind may be using: told by
/// the status 9.
[[noreturn]] void endAfterDestroyingFetcher(bool isStuck) {
    std::atexit([] { ::_exit(9); });
    HandTurnedExecutor executor;
    const auto agent = std::make_shared<StubAgent>("agent");
    if (isStuck) {
        agent->holdFetches();
    }
    {
        UsageFetcher fetcher(executor, "/home/jo");
        bool isOver = false;
        fetcher.start(std::make_shared<StubProvider>(agent), "Agent",
                      UsageFetcher::Occasion::byHand, [&](const FetchOutcome&) { isOver = true; });
        while (!isStuck && !isOver) {
            executor.turn();
        }
        executor.advance(UsageFetcher::fetchLimit);
    }
    endProgram(4);
}

TEST(UsageFetcherDeathTest, NothingIsDestroyedUnderAFetchThatIsLeftBehind) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(endAfterDestroyingFetcher(true), testing::ExitedWithCode(4), "");
    EXPECT_EXIT(endAfterDestroyingFetcher(false), testing::ExitedWithCode(9), "");
}

} // namespace
} // namespace vellmark::tests
