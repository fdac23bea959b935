#include "probes/claude/ClaudeUsageParser.h"
#include "support/ProjectDirectories.h"
#include "support/TemporaryDirectory.h"
#include "text/Dates.h"

#include <gtest/gtest.h>

#include <ostream>
namespace vellmark::tests {
namespace {

using namespace ClaudeUsageParser;

Instant zurich(int year, int month, int day, int hour, int minute = 0, int second = 0) {
    return TimeZone::named("Europe/Zurich")->instant({year, month, day, hour, minute, second});
}

const Instant morning = zurich(2025, 11, 20, 10);

const UsageWindow* windowOf(const AgentUsageSnapshot& snapshot, std::string_view id) {
    for (const UsageWindow& window : snapshot.windows) {
        if (window.id == id) {
            return &window;
        }
    }
    return nullptr;
}

std::string recordedSession() {
    return contentOf(sourceFile("tests/probes/claude/data/usage-session.capture"));
}

struct WindowCase {
    const char* name;
    std::string capture;
    const char* id;
    /// Absent: the capture holds no such window.
    std::optional<double> used;
    double minutes = 0;
    std::optional<Instant> resetsAt;
};

void PrintTo(const WindowCase& test, std::ostream* out) {
    *out << test.name;
}

class ClaudeWindows : public testing::TestWithParam<WindowCase> {};

TEST_P(ClaudeWindows, areReadOffTheScreen) {
    // Another section that is always good keeps the page from counting as empty.
    const bool isWeek = std::string_view(GetParam().id) == "weekly";
    const std::string other =
        isWeek ? "Current session\n1% used\n" : "Current week (all models)\n1% used\n";
    const ClaudeScreen screen(other + "\n\n\n\n-\n-\n-\n-\n-\n" + GetParam().capture);
    const AgentUsageSnapshot snapshot = parseUsage(screen, morning);
    const UsageWindow* window = windowOf(snapshot, GetParam().id);
    ASSERT_EQ(window != nullptr, GetParam().used.has_value());
    if (window) {
        EXPECT_EQ(window->usedPercent, *GetParam().used);
        EXPECT_EQ(window->windowDurationMinutes, GetParam().minutes);
        EXPECT_EQ(window->resetsAt, GetParam().resetsAt);
    }
}

INSTANTIATE_TEST_SUITE_P(
    , ClaudeWindows,
    testing::Values(
        WindowCase{"session", "Current session\n█████▌ 11% used\nResets 3pm (Europe/Zurich)\n",
                   "session", 11, 300, zurich(2025, 11, 20, 15)},
        WindowCase{"weekWithDecimalComma",
                   "Current week (all models)\r\n████ 42,5% used\r\nResets Nov 24 at 9:30am "
                   "(Europe/Zurich)\r\n",
                   "weekly", 42.5, 10080, zurich(2025, 11, 24, 9, 30)},
        WindowCase{"resetThatIsPastToday", "Current session\n0% used\nResets 9am\n", "session", 0,
                   300, zurich(2025, 11, 21, 9)},
        WindowCase{"secondPercentageIsSkipped", "Current week (Fable)\n7% 93% used\n",
                   "fable-weekly", 7, 10080, std::nullopt},
        WindowCase{"unreadableReset", "Current session\n5% used\nResets soon\n", "session", 5, 300,
                   std::nullopt},
        WindowCase{"noPercentage", "Current week (all models)\nResets Jan 2 at 1am\n", "weekly",
                   std::nullopt, 0, std::nullopt},
        WindowCase{"headingInALongerLine", "Current session (5 hours)\n11% used\n", "session",
                   std::nullopt, 0, std::nullopt},
        WindowCase{"percentageInTheFifthLine", "Current session\na\nb\nc\nd\n11% used\n", "session",
                   11, 300, std::nullopt},
        WindowCase{"percentageInTheSixthLine", "Current session\na\nb\nc\nd\ne\n11% used\n",
                   "session", std::nullopt, 0, std::nullopt},
        WindowCase{
            "lastDrawingWins",
            "Current session\n11% used\nResets 3pm\n\033[2J\033[HCurrent session\n12% used\n",
            "session", 12, 300, std::nullopt},
        WindowCase{
            "coloursBetweenDigits",
            "\033[1mCurrent session\033[0m\r\n\033[32m4\033[1m2\033[0m% \033]0;x\007used\r\n",
            "session", 42, 300, std::nullopt},
        WindowCase{"numberBeyondAllBounds",
                   "Current session\n" + std::string(400, '9') + "% used\n", "session",
                   std::nullopt, 0, std::nullopt},
        WindowCase{"noBreakSpace", "Current session\n11%\u00a0used\n", "session", 11, 300,
                   std::nullopt}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(ClaudeUsageParser, givesNoQuotasWithoutAnyWindow) {
    for (const std::string capture :
         {"", "Current week (all models)\nResets Jan 2 at 1am\n", "11% used\n", "\xff\xfe"}) {
        const ClaudeScreen screen(capture);
        try {
            parseUsage(screen, morning);
            FAIL() << capture;
        } catch (const UsageProviderError& error) {
            EXPECT_EQ(error.kind(), UsageProviderError::Kind::claudeNoQuotas);
        }
    }
}

struct ResetCase {
    const char* line;
    Instant now;
    std::optional<Instant> expected;
};

TEST(ClaudeUsageParser, readsResetTimesAsZurichTime) {
    const ResetCase cases[] = {
        {"Resets Dec 31 at 11pm", zurich(2026, 1, 1, 0, 30), zurich(2026, 12, 31, 23)},
        {"Resets Dec 31 at 11pm", zurich(2025, 12, 31, 23, 30), zurich(2025, 12, 31, 23)},
        {"Resets Jan 2 at 1am", zurich(2025, 12, 30, 12), zurich(2026, 1, 2, 1)},
        {"Resets Nov 19 at 10am", morning, zurich(2025, 11, 19, 10)},
        {"Resets Nov 19 at 9:59am", morning, zurich(2026, 11, 19, 9, 59)},
        {"Resets 10am", morning, zurich(2025, 11, 21, 10)},
        {"Resets 10:01am (America/New_York)", morning, zurich(2025, 11, 20, 10, 1)},
        {"Resets 12am", morning, zurich(2025, 11, 21, 0)},
        {"Resets 12:30pm", morning, zurich(2025, 11, 20, 12, 30)},
        {"3pm", morning, zurich(2025, 11, 20, 15)},
        // Clock changes: the last Sunday in October has 25 hours, that in March 23.
        {"Resets 9am", zurich(2025, 10, 25, 10), zurich(2025, 10, 26, 9)},
        {"Resets Mar 26 at 2:30am", zurich(2026, 3, 20, 10), zurich(2026, 3, 26, 2, 30)},
        {"Resets Feb 29 at 5pm", zurich(2028, 2, 20, 10), zurich(2028, 2, 29, 17)},
        {"Resets Nov 24 at 9:30am tomorrow", morning, std::nullopt},
        {"Resets Nov 31 at 9am", morning, std::nullopt},
        {"Resets 13pm", morning, std::nullopt},
        {"Resets 9:75am", morning, std::nullopt},
        {"Resets", morning, std::nullopt},
        {"", morning, std::nullopt},
    };
    for (const ResetCase& test : cases) {
        EXPECT_EQ(resetDate(test.line, test.now), test.expected) << test.line;
    }
}

TEST(ClaudeUsageParser, readsAccountPlanAndCredits) {
    const ClaudeScreen screen(
        "Login method: Claude Max Account \r\nEmail:  name@example.org (me)\r\n"
        "Current session\r\n11% used\r\n"
        "Usage credits\r\nnone yet\r\n"
        "Usage credits\r\n\033[1m$3.20 / $50.00 spent\033[0m\r\n");
    const AgentUsageSnapshot snapshot = parseUsage(screen, morning);
    EXPECT_EQ(snapshot.accountLabel, "name@example.org");
    EXPECT_EQ(snapshot.plan, "Claude Max");
    EXPECT_EQ(snapshot.credit, CreditInfo::line("$3.20 / $50.00 spent"));
    EXPECT_EQ(snapshot.source, SnapshotSource::live);
    EXPECT_EQ(snapshot.updatedAt, morning);
}

TEST(ClaudeUsageParser, leavesOutWhatThePageDoesNotShow) {
    const ClaudeScreen screen("Login method: API key\nCurrent session\n11% used\nspent\n");
    const AgentUsageSnapshot snapshot = parseUsage(screen, morning);
    EXPECT_EQ(snapshot.accountLabel, std::nullopt);
    EXPECT_EQ(snapshot.plan, "API key");
    EXPECT_EQ(snapshot.credit, std::nullopt);
}

TEST(ClaudeUsageParser, findsThePageErrorThatIsFirstInItsList) {
    const std::pair<const char*, std::optional<std::string>> cases[] = {
        {"Failed to load usage data · Esc to retry\n", "Esc to retry"},
        {"couldn't LOAD usage\nfailed to fetch usage\n", "Failed to fetch usage"},
        {"Unable to load usage", "Unable to load usage"},
        {"\033[31mCould not\033[0m load usage", "Could not load usage"},
        {"VELLMARK_TIMING Esc to retry\n", std::nullopt},
        {"Failed to\nload usage", std::nullopt},
        {"Current session\n11% used\nEsc to cancel\n", std::nullopt},
    };
    for (const auto& [capture, expected] : cases) {
        EXPECT_EQ(pageError(ClaudeScreen(capture)), expected) << capture;
    }
}

struct EndingCase {
    const char* capture;
    bool isSpendLine;
    const char* variant;
};

TEST(ClaudeUsageParser, looksAtThePagesLastLine) {
    const EndingCase cases[] = {
        {"Usage credits\n$3.20 / $50.00 spent\nEsc to cancel\n\nVELLMARK_TIMING 1 2 3 4\n", true,
         "$. / $. spent"},
        {"$1'200/$5,000.50 spent · Resets Dec 1\n", true, "$'/$,. spent · Resets Dec"},
        {"Extra: $3.20 / $50.00 spent\n", false, "Extra: $. / $. spent"},
        {"$3.20 / $50.00 spent\nRefreshed 12 s ago, 98% warm\n", false, "Refreshed  s ago,  warm"},
        {"0123456789 abcdefghij abcdefghij abcdefghij abcdefghij äbcdefghij\n", false,
         "abcdefghij abcdefghij abcdefghij abcdefghij äbcd"},
        {"Esc to cancel\n", false, ""},
        {"", false, ""},
    };
    for (const EndingCase& test : cases) {
        const ClaudeScreen screen(test.capture);
        EXPECT_EQ(endsWithSpendLine(screen), test.isSpendLine) << test.capture;
        EXPECT_EQ(pageEndingVariant(screen), test.variant) << test.capture;
    }
}

TEST(ClaudeUsageParser, readsTheTimingLine) {
    EXPECT_EQ(stamps(ClaudeScreen("page\r\n\r\nVELLMARK_TIMING 76 137 1959 3080\r\n")),
              (Stamps{76, 137, 1959, 3080}));
    for (const char* capture :
         {"VELLMARK_TIMING 76 137 1959\n", "VELLMARK_TIMING a b c d\n",
          "x VELLMARK_TIMING 1 2 3 4\n", "VELLMARK_TIMING 99999999999999999999 1 2 3\n", ""}) {
        EXPECT_EQ(stamps(ClaudeScreen(capture)), std::nullopt) << capture;
    }
}

TEST(ClaudeUsageParser, readsARecordedSession) {
    const ClaudeScreen screen(recordedSession());
    const AgentUsageSnapshot snapshot = parseUsage(screen, morning);
    ASSERT_EQ(snapshot.windows.size(), 3u);
    EXPECT_EQ(snapshot.windows[0].usedPercent, 54);
    EXPECT_EQ(snapshot.windows[1].usedPercent, 71);
    EXPECT_EQ(snapshot.windows[2].usedPercent, 84);
    EXPECT_TRUE(snapshot.windows[2].resetsAt);
    EXPECT_EQ(snapshot.accountLabel, "name@example.org");
    EXPECT_EQ(snapshot.plan, "Max 20x");
    EXPECT_EQ(snapshot.credit, CreditInfo::line("$3.20 / $20.00 spent"));
    EXPECT_TRUE(stamps(screen));
}

TEST(ClaudeUsageParser, standsASessionCutOffAtAnyByte) {
    const std::string session = recordedSession();
    for (std::size_t length = 0; length < session.size(); ++length) {
        const ClaudeScreen screen(std::string_view(session).substr(0, length));
        try {
            for (const UsageWindow& window : parseUsage(screen, morning).windows) {
                // A number is never read in part: it counts only with the words behind it.
                EXPECT_GE(window.usedPercent, 52) << length;
            }
        } catch (const UsageProviderError& error) {
            EXPECT_EQ(error.kind(), UsageProviderError::Kind::claudeNoQuotas) << length;
        }
    }
}

} // namespace
} // namespace vellmark::tests
