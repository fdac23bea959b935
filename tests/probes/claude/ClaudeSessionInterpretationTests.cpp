#include "probes/claude/ClaudeSessionInterpretation.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace vellmark::tests {
namespace {

using Kind = UsageProviderError::Kind;

const Instant now{Seconds(785000000)};
const std::string page = "Current session\n11% used\n";
const std::string pageError = "Failed to load usage data\n";

TEST(ClaudeSession, IsAReadingOrItsReason) {
    const auto timeout = UsageProviderError::timeout("Claude");
    const struct {
        std::string capture;
        ClaudeSessionEnd end;
        /// Absent: a snapshot.
        std::optional<UsageProviderError> error;
        std::optional<std::string> endingVariant;
    } cases[] = {
        {page, {0, false}, {}, {}},
        {page + "Page 3\n", {20, false}, {}, "Page"},
        {page + "$1 / $2 spent\n", {20, false}, {}, {}},
        {page + pageError, {128, false}, UsageProviderError(Kind::claudeNotLoggedIn), {}},
        {page + pageError,
         {125, false},
         UsageProviderError::claudePageError("Failed to load usage"),
         {}},
        {"\033[31mno such\033[0m option",
         {125, false},
         UsageProviderError::claudeReadFailed(125, "no such option"),
         {}},
        {"error: unknown option '--restricted'\r\n",
         {125, false},
         UsageProviderError::claudeOptionRefused("--restricted"),
         {}},
        {page + "What's contributing to your usage?\n…\n", {20, false}, {}, {}},
        {page + "What's contributing to your limits usage?\n…\n", {20, false}, {}, {}},
        {page + "Usage credits\nnone\n", {20, false}, {}, {}},
        // The page itself says that the service refused.
        {"Couldn't refresh usage data\n",
         {20, false},
         UsageProviderError::claudeServiceRefused("Couldn't refresh usage data"),
         {}},
        {"Refreshing usage…\n", {15, true}, timeout, {}},
        {std::string(600, 'x'),
         {1, false},
         UsageProviderError::claudeReadFailed(1, std::string(500, 'x')),
         {}},
        // Cut off, with a window and without.
        {page, {15, true}, {}, {}},
        {"Loading", {15, true}, timeout, {}},
        {page, {15, true, true}, {}, {}},
        {"Loading",
         {15, true, true},
         UsageProviderError::claudeReadFailed(15, "too much output"),
         {}},
        {page, {143, false}, {}, {}},
        // The script's own ends: no prompt, no blocks, gone within the usage screen.
        {"", {124, false}, timeout, {}},
        {"", {126, false}, timeout, {}},
        {"", {127, false}, timeout, {}},
        {"", {0, false}, UsageProviderError(Kind::claudeNoQuotas), {}},
        {page + "\xff", {20, false}, UsageProviderError(Kind::claudeNoQuotas), {}},
    };
    for (const auto& [capture, end, expected, endingVariant] : cases) {
        SCOPED_TRACE(capture + " " + std::to_string(end.status));
        std::optional<UsageProviderError> error;
        try {
            const auto snapshot = interpretClaudeSession(ClaudeScreen(capture), end, now);
            EXPECT_EQ(snapshot.updatedAt, now);
            EXPECT_EQ(snapshot.windows.size(), 1u);
            std::vector<SnapshotNote> notes;
            if (endingVariant) {
                notes.push_back({SnapshotNote::ClaudeEndMarkerMissing{*endingVariant}});
            }
            EXPECT_EQ(snapshot.notes, notes);
        } catch (const UsageProviderError& thrown) {
            error = thrown;
        }
        EXPECT_EQ(error, expected);
    }
}

TEST(ClaudeTiming, TellsWhereTheTimeWent) {
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
