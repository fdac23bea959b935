#include "probes/claude/ModelWindowMemory.h"
#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <fstream>
#include <ostream>

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

struct HistoryCase {
    const char* name;
    std::string history;
    bool expected;
};

void PrintTo(const HistoryCase& test, std::ostream* out) {
    *out << test.name;
}

class ModelWindowHistory : public testing::TestWithParam<HistoryCase> {};

TEST_P(ModelWindowHistory, tellsWhetherTheWindowIsToBeExpected) {
    const TemporaryDirectory directory;
    const std::filesystem::path file = directory.path() / "usage-history.json";
    std::ofstream(file) << GetParam().history;
    EXPECT_EQ(ModelWindowMemory(file).shouldExpectModelWindow(now), GetParam().expected);
}

const std::string recent = sample("claude", "fable-weekly", 23);

INSTANTIATE_TEST_SUITE_P(
    , ModelWindowHistory,
    testing::Values(
        HistoryCase{"seen23HoursAgo", '[' + recent + "]", true},
        HistoryCase{"seen24HoursAgo", '[' + sample("claude", "fable-weekly", 24) + "]", false},
        HistoryCase{"latestCounts", '[' + recent + "," + sample("claude", "fable-weekly", 90) + "]",
                    true},
        HistoryCase{"otherWindow", '[' + sample("claude", "weekly", 1) + "]", false},
        HistoryCase{"otherAgent", '[' + sample("codex", "fable-weekly", 1) + "]", false},
        HistoryCase{"unknownFields", R"([{"more":[1,{"id":2}],)" + recent.substr(1) + "]", false},
        HistoryCase{"nullReset",
                    '[' + recent.substr(0, recent.find(",\"resetsAt\"")) + R"(,"resetsAt":null}])",
                    true},
        HistoryCase{"empty", "[]", false}, HistoryCase{"emptyFile", "", false},
        HistoryCase{"noArray", recent, false},
        HistoryCase{"nestedArray", std::string("[[") + recent + "]]", false},
        HistoryCase{"cutOff", '[' + recent + ",", false},
        HistoryCase{"oneBadSample", '[' + recent + R"(,{"provider":"claude"}])", false},
        HistoryCase{
            "dateAsText",
            R"([{"id":"8C1D7A52-40CF-4B3B-9B0F-6B2C4B7F4A11","provider":"claude",)"
            R"("windowID":"fable-weekly","capturedAt":"2025-11-17T10:00:00Z","usedPercent":1}])",
            false}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(ModelWindowMemory, remembersASightingWithoutAHistory) {
    ModelWindowMemory memory(std::nullopt);
    EXPECT_FALSE(memory.shouldExpectModelWindow(now));
    memory.markSeen(now);
    EXPECT_TRUE(memory.shouldExpectModelWindow(now + Seconds(86399)));
    EXPECT_FALSE(memory.shouldExpectModelWindow(now + Seconds(86400)));
}

TEST(ModelWindowMemory, readsTheHistoryOnceAndKeepsTheLaterSighting) {
    const TemporaryDirectory directory;
    const std::filesystem::path file = directory.path() / "usage-history.json";
    ModelWindowMemory memory(file, now - Seconds(2 * hour));
    std::ofstream(file) << '[' + sample("claude", "fable-weekly", 3) + "]";
    EXPECT_TRUE(memory.shouldExpectModelWindow(now));
    // Two hours ago counts, not three: 23 hours on the window is no longer expected.
    EXPECT_FALSE(memory.shouldExpectModelWindow(now + Seconds(22 * hour)));
    std::ofstream(file) << '[' + sample("claude", "fable-weekly", -21) + "]";
    EXPECT_FALSE(memory.shouldExpectModelWindow(now + Seconds(22 * hour)));
}

} // namespace
} // namespace vellmark::tests
