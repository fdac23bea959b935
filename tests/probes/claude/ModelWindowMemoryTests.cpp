#include "probes/claude/ModelWindowMemory.h"
#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace vellmark::tests {
namespace {

const Instant now{Seconds(785000000.5)};
constexpr double hour = 3600;

std::string sample(const std::string& provider, const std::string& window, double hoursAgo) {
    return R"({"id":"8C1D7A52-40CF-4B3B-9B0F-6B2C4B7F4A11","provider":")" + provider +
           R"(","windowID":")" + window + R"(","capturedAt":)" +
           std::to_string(now.time_since_epoch().count() - hoursAgo * hour) +
           R"(,"usedPercent":12.5,"resetsAt":785100000})";
}

TEST(ModelWindowMemory, ExpectsTheWindowWhenTheHistoryHasSeenItWithinADay) {
    const std::string recent = sample("claude", "fable-weekly", 23);
    const std::pair<std::string, bool> cases[] = {
        {'[' + recent + "]", true},
        {'[' + sample("claude", "fable-weekly", 24) + "]", false},
        {'[' + recent + "," + sample("claude", "fable-weekly", 90) + "]", true},
        {'[' + sample("claude", "weekly", 1) + "]", false},
        {'[' + sample("codex", "fable-weekly", 1) + "]", false},
        {'[' + recent.substr(0, recent.find(",\"resetsAt\"")) + R"(,"resetsAt":null}])", true},
        // No history of this form: nothing is known.
        {recent, false},
        {'[' + recent + ",", false},
        {'[' + recent + R"(,{"provider":"claude"}])", false},
    };
    const TemporaryDirectory directory;
    for (const auto& [history, expected] : cases) {
        const auto file = directory.write("usage-history.json", history);
        EXPECT_EQ(ModelWindowMemory(file).shouldExpectModelWindow(now), expected) << history;
    }
}

TEST(ModelWindowMemory, RemembersASightingWithoutAHistory) {
    ModelWindowMemory memory(std::nullopt);
    EXPECT_FALSE(memory.shouldExpectModelWindow(now));
    memory.markSeen(now);
    EXPECT_TRUE(memory.shouldExpectModelWindow(now + Seconds(86399)));
    EXPECT_FALSE(memory.shouldExpectModelWindow(now + Seconds(86400)));
}

TEST(ModelWindowMemory, ReadsTheHistoryOnceAndKeepsTheLaterSighting) {
    const TemporaryDirectory directory;
    const fs::path file = directory / "usage-history.json";
    ModelWindowMemory memory(file, now - Seconds(2 * hour));
    writeFile(file, '[' + sample("claude", "fable-weekly", 3) + "]");
    EXPECT_TRUE(memory.shouldExpectModelWindow(now));
    // Two hours ago counts, not three: 23 hours on the window is no longer expected.
    EXPECT_FALSE(memory.shouldExpectModelWindow(now + Seconds(22 * hour)));
    writeFile(file, '[' + sample("claude", "fable-weekly", -21) + "]");
    EXPECT_FALSE(memory.shouldExpectModelWindow(now + Seconds(22 * hour)));
}

} // namespace
} // namespace vellmark::tests
