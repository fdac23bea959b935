#include "probes/claude/ClaudeSession.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>

namespace vellmark::tests {
namespace {

using Kind = UsageProviderError::Kind;

const Instant now{Seconds(785000000)};
const std::string page = "Current session\n11% used\n";
const std::string pageError = "Failed to load usage data\n";

struct SessionCase {
    const char* name;
    std::string capture;
    ClaudeSessionEnd end;
    /// Absent: a snapshot.
    std::optional<UsageProviderError> error;
    std::optional<std::string> endingVariant;
};

void PrintTo(const SessionCase& test, std::ostream* out) {
    *out << test.name;
}

class ClaudeSessions : public testing::TestWithParam<SessionCase> {};

TEST_P(ClaudeSessions, areAReadingOrItsReason) {
    const SessionCase& test = GetParam();
    const ClaudeScreen screen(test.capture);
    std::optional<UsageProviderError> error;
    try {
        const AgentUsageSnapshot snapshot = interpretClaudeSession(screen, test.end, now);
        EXPECT_EQ(snapshot.updatedAt, now);
        EXPECT_EQ(snapshot.windows.size(), 1u);
        std::vector<SnapshotNote> notes;
        if (test.endingVariant) {
            notes.push_back({SnapshotNote::ClaudeEndMarkerMissing{*test.endingVariant}});
        }
        EXPECT_EQ(snapshot.notes, notes);
    } catch (const UsageProviderError& thrown) {
        error = thrown;
    }
    EXPECT_EQ(error, test.error);
}

INSTANTIATE_TEST_SUITE_P(
    , ClaudeSessions,
    testing::Values(
        SessionCase{"complete", page, {0, false}, {}, {}},
        SessionCase{"completeBySilence", page + "Page 3\n", {20, false}, {}, "Page"},
        SessionCase{"spendLineStandsForTheEnd", page + "$1 / $2 spent\n", {20, false}, {}, {}},
        SessionCase{"loggedOutComesBeforePageError",
                    page + pageError,
                    {128, false},
                    UsageProviderError(Kind::claudeNotLoggedIn),
                    {}},
        SessionCase{"pageErrorComesBeforeStatus",
                    page + pageError,
                    {125, false},
                    UsageProviderError::claudePageError("Failed to load usage"),
                    {}},
        SessionCase{"endedEarly",
                    "\033[31mno such\033[0m option",
                    {125, false},
                    UsageProviderError::claudeReadFailed(125, "no such option"),
                    {}},
        SessionCase{"interpreterFailed",
                    std::string(600, 'x'),
                    {1, false},
                    UsageProviderError::claudeReadFailed(1, std::string(500, 'x')),
                    {}},
        SessionCase{"cutOffWithAWindow", page, {15, true}, {}, {}},
        SessionCase{
            "cutOffWithout", "Loading", {15, true}, UsageProviderError::timeout("Claude"), {}},
        SessionCase{"noPrompt", "", {124, false}, UsageProviderError::timeout("Claude"), {}},
        SessionCase{"noBlocks", "", {126, false}, UsageProviderError::timeout("Claude"), {}},
        SessionCase{"endedInUsage", "", {127, false}, UsageProviderError::timeout("Claude"), {}},
        SessionCase{"terminated", page, {143, false}, {}, {}},
        SessionCase{
            "emptyButComplete", "", {0, false}, UsageProviderError(Kind::claudeNoQuotas), {}},
        SessionCase{
            "noText", page + "\xff", {20, false}, UsageProviderError(Kind::claudeNoQuotas), {}}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(ClaudeTiming, tellsWhereTheTimeWent) {
    const ClaudeSessionTimes times{Seconds(9.5), Seconds(8.2), Seconds(0.004)};
    const auto note =
        claudeTimingNote(ClaudeScreen("VELLMARK_TIMING 1100 1700 4600 5800\n"), times);
    ASSERT_TRUE(note);
    EXPECT_EQ(*note, (SnapshotNote{SnapshotNote::ClaudeTiming{1304, 1100, 600, 2900, 1200, 2400}}));
    // A clock that was set back gives no negative spans.
    const auto odd = claudeTimingNote(ClaudeScreen("VELLMARK_TIMING 1100 700 600 9800\n"), times);
    ASSERT_TRUE(odd);
    EXPECT_EQ(*odd, (SnapshotNote{SnapshotNote::ClaudeTiming{1304, 1100, 0, 0, 9200, 0}}));
    EXPECT_EQ(claudeTimingNote(ClaudeScreen(page), times), std::nullopt);
}

} // namespace
} // namespace vellmark::tests
