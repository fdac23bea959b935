#include "probes/AgentScenario.h"
#include "probes/claude/ClaudeModelWindow.h"
#include "probes/claude/ClaudeUsageParser.h"
#include "text/Dates.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vellmark::tests {
namespace {

using namespace ClaudeUsageParser;

Instant zurich(int year, int month, int day, int hour, int minute = 0, int second = 0) {
    return TimeZone::named("Europe/Zurich")->instant({year, month, day, hour, minute, second});
}

const Instant morning = zurich(2025, 11, 20, 10);

TEST(ClaudeUsageParser, ReadsTheWindowsOffTheScreen) {
    const std::pair<std::string, UsageWindow> cases[] = {
        {"Current session\n█████▌ 11% used\nResets 3pm (Europe/Zurich)\n",
         {"session", 11, 300, zurich(2025, 11, 20, 15)}},
        {"Current week (all models)\r\n████ 42,5% used\r\nResets Nov 24 at 9:30am (Europe/Zurich)",
         {"weekly", 42.5, 10080, zurich(2025, 11, 24, 9, 30)}},
        // The second percentage is what is left.
        {"Current week (Fable)\n7% 93% used\n", {"fable-weekly", 7, 10080, {}}},
        {"Current session\n5% used\nResets soon\n", {"session", 5, 300, {}}},
        {"Current session\na\nb\nc\nd\n11% used\n", {"session", 11, 300, {}}},
        // The last drawing counts.
        {"Current session\n11% used\nResets 3pm\n\033[2J\033[HCurrent session\n12% used\n",
         {"session", 12, 300, {}}},
        {"\033[1mCurrent session\033[0m\r\n\033[32m4\033[1m2\033[0m% \033]0;x\007used\r\n",
         {"session", 42, 300, {}}},
        {"Current session\n11%\u00a0used\n", {"session", 11, 300, {}}},
        // A page that the CLI goes over; the script's line between is not on it.
        {"Current session\r\n12% used\r\nResets 3pm\r\nEsc to close\x1b[3A\n"
         "VELLMARK_TIMING 1 2 3 4\n\x1b[B\x1b[2K\x1b[G88% used",
         {"session", 88, 300, zurich(2025, 11, 20, 15)}},
        {"Current week (Sonnet only)\n7% used\nResets Nov 27, 1pm (Europe/Zurich)",
         {"sonnet-weekly", 7, 10080, zurich(2025, 11, 27, 13)}},
    };
    for (const auto& [capture, expected] : cases) {
        const AgentUsageSnapshot snapshot = parseUsage(ClaudeScreen(capture), morning);
        EXPECT_EQ(snapshot.windows, std::vector{expected}) << capture;
    }
}

TEST(ClaudeUsageParser, EndsABlockAtTheNextHeading) {
    const ClaudeScreen screen("Current session\n0% used\nCurrent week (all models)\n3% used\n"
                              "Resets 3pm\nCurrent week (Fable)\nUsage credits\n9% used\n"
                              "Current week (Opus)\nExtra usage\n8% used\n");
    const std::vector<UsageWindow> expected = {{"session", 0, 300, {}},
                                               {"weekly", 3, 10080, zurich(2025, 11, 20, 15)}};
    EXPECT_EQ(parseUsage(screen, morning).windows, expected);
}

TEST(ClaudeUsageParser, ReadsTheWindowsOfFurtherModelsInThePagesOrder) {
    const ClaudeScreen screen("Current week (Opus)\n1% used\nCurrent week (Sonnet 5)\n2% used\n"
                              "Current week (Opus)\n3% used\nCurrent week (Fable)\n4% used\n"
                              "Current week (…)\n5% used\nCurrent week (Haiku) so far\n6% used\n"
                              "Current session\n7% used\nCurrent week (FABLE)\n8% used\n");
    const std::vector<UsageWindow> expected = {{"session", 7, 300, {}},
                                               {"fable-weekly", 4, 10080, {}},
                                               {"sonnet-5-weekly", 2, 10080, {}},
                                               {"opus-weekly", 3, 10080, {}}};
    EXPECT_EQ(parseUsage(screen, morning).windows, expected);

    std::string many;
    for (int model = 0; model < 1000; ++model) {
        many += "Current week (Model " + std::to_string(model) + ")\n1% used\n";
    }
    EXPECT_LE(parseUsage(ClaudeScreen(many), morning).windows.size(), 20u);
}

TEST(ClaudeUsageParser, NamesTheWindowsOfModels) {
    const std::pair<const char*, std::optional<std::string>> cases[] = {
        {"Opus", "opus-weekly"},
        {" Sonnet only ", "sonnet-weekly"},
        {"Opus 5.5 (1M)", "opus-55-1m-weekly"},
        {"Fable", "fable-weekly"},
        {"mini-2", "mini-2-weekly"},
        {"- -", std::nullopt},
        {"漢字", std::nullopt},
        {"", std::nullopt},
    };
    for (const auto& [model, expected] : cases) {
        EXPECT_EQ(claudeModelWindowIDFor(model), expected) << model;
    }
}

TEST(ClaudeUsageParser, TellsHowOldFiguresAre) {
    const std::pair<const char*, std::optional<Seconds>> cases[] = {
        {"Showing last-known usage as of 45s ago", Seconds(45)},
        {"Showing last-known usage as of 12m ago (couldn't refresh)", Seconds(720)},
        {"Showing last-known usage as of 1h 5m ago", Seconds(3900)},
        {"Showing last-known usage (couldn't refresh)", std::nullopt},
        {"Showing last-known usage as of just now", std::nullopt},
        {"Partial usage data (rate limited until 4am)\nShowing last-known usage as of 2m ago",
         Seconds(120)},
    };
    for (const auto& [notice, expected] : cases) {
        const auto found =
            staleness(ClaudeScreen("Current session\n5% used\n" + std::string(notice)));
        ASSERT_TRUE(found) << notice;
        EXPECT_EQ(found->age, expected) << notice;
        EXPECT_FALSE(found->isRefreshing) << notice;
    }
    const std::string page = "Current session\n5% used\n";
    // An older drawing above the last one.
    EXPECT_FALSE(staleness(ClaudeScreen(page + "Refreshing usage…\n" + page)));
    EXPECT_TRUE(staleness(ClaudeScreen("Refreshing usage…\n" + page)));
    EXPECT_FALSE(staleness(ClaudeScreen(page + "Usage refreshed\n")));
}

TEST(ClaudeUsageParser, QuotesALimitThatIsHit) {
    const std::pair<const char*, std::optional<std::string>> cases[] = {
        {"! You've hit your session limit · resets 4am", "You've hit your session limit"},
        {"You’ve hit your limit.", "You’ve hit your limit"},
        {"You've hit your monthly spend limit", "You've hit your monthly spend limit"},
        {"You've used 90% of your session limit", std::nullopt},
    };
    for (const auto& [line, expected] : cases) {
        EXPECT_EQ(hitLimit(ClaudeScreen(line)), expected) << line;
    }
}

TEST(ClaudeUsageParser, GivesNoQuotasWithoutAnyWindow) {
    for (const std::string& capture :
         {std::string(), std::string("Current week (all models)\nResets Jan 2 at 1am\n"),
          std::string("Current session (5 hours)\n11% used\n"),
          std::string("Current session\na\nb\nc\nd\ne\n11% used\n"), // too far below
          "Current session\n" + std::string(400, '9') + "% used\n", std::string("\xff\xfe")}) {
        EXPECT_EQ(errorOf([&] { parseUsage(ClaudeScreen(capture), morning); }),
                  UsageProviderError(UsageProviderError::Kind::claudeNoQuotas))
            << capture;
    }
}

TEST(ClaudeUsageParser, ReadsResetTimesAsZurichTime) {
    const std::tuple<const char*, Instant, std::optional<Instant>> cases[] = {
        {"Resets Dec 31 at 11pm", zurich(2026, 1, 1, 0, 30), zurich(2026, 12, 31, 23)},
        {"Resets Dec 31 at 11pm", zurich(2025, 12, 31, 23, 30), zurich(2025, 12, 31, 23)},
        {"Resets Jan 2 at 1am", zurich(2025, 12, 30, 12), zurich(2026, 1, 2, 1)},
        {"Resets Nov 19 at 10am", morning, zurich(2025, 11, 19, 10)},
        {"Resets Nov 19 at 9:59am", morning, zurich(2026, 11, 19, 9, 59)},
        {"Resets 10am", morning, zurich(2025, 11, 21, 10)},
        {"Resets 10:01am (America/New_York)", morning, zurich(2025, 11, 20, 10, 1)},
        {"Resets Nov 27, 1pm (Europe/Zurich)", morning, zurich(2025, 11, 27, 13)},
        {"Resets Nov 26, 6:51pm", morning, zurich(2025, 11, 26, 18, 51)},
        {"Resets Dec 1", morning, std::nullopt},
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
        {"", morning, std::nullopt},
    };
    for (const auto& [line, now, expected] : cases) {
        EXPECT_EQ(resetDate(line, now), expected) << line;
    }
}

TEST(ClaudeUsageParser, ReadsAccountPlanAndCredits) {
    const ClaudeScreen screen(
        "Login method: Claude Max Account \r\nEmail:  name@example.org (me)\r\n"
        "Current session\r\n11% used\r\n"
        "Usage credits\r\nnone yet\r\n"
        "Usage credits\r\n\033[1m$3.20 / $50.00 spent\033[0m\r\n");
    const AgentUsageSnapshot snapshot = parseUsage(screen, morning);
    EXPECT_EQ(snapshot.accountLabel, "name@example.org");
    EXPECT_EQ(snapshot.plan, "Claude Max");
    EXPECT_EQ(snapshot.credit, CreditInfo::line("$3.20 / $50.00 spent"));

    const ClaudeScreen lacking("Login method: API key\nCurrent session\n11% used\nspent\n");
    EXPECT_EQ(parseUsage(lacking, morning).accountLabel, std::nullopt);
    EXPECT_EQ(parseUsage(lacking, morning).plan, "API key");
    EXPECT_EQ(parseUsage(lacking, morning).credit, std::nullopt);
}

TEST(ClaudeUsageParser, FindsThePageErrorThatIsFirstInItsList) {
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

TEST(ClaudeUsageParser, LooksAtThePagesLastLine) {
    const std::tuple<const char*, bool, const char*> cases[] = {
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
    for (const auto& [capture, isSpendLine, variant] : cases) {
        const ClaudeScreen screen(capture);
        EXPECT_EQ(endsWithSpendLine(screen), isSpendLine) << capture;
        EXPECT_EQ(pageEndingVariant(screen), variant) << capture;
    }
}

TEST(ClaudeUsageParser, ReadsTheTimingLine) {
    EXPECT_EQ(stamps(ClaudeScreen("page\r\n\r\nVELLMARK_TIMING 76 137 1959 3080\r\n")),
              (Stamps{76, 137, 1959, 3080}));
    for (const char* capture :
         {"VELLMARK_TIMING 76 137 1959\n", "VELLMARK_TIMING a b c d\n",
          "x VELLMARK_TIMING 1 2 3 4\n", "VELLMARK_TIMING 99999999999999999999 1 2 3\n", ""}) {
        EXPECT_EQ(stamps(ClaudeScreen(capture)), std::nullopt) << capture;
    }
}

} // namespace
} // namespace vellmark::tests
