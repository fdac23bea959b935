#include "model/UsageTexts.h"
#include "text/Dates.h"

#include <gtest/gtest.h>

namespace vellmark {

namespace {

const char* const zone = "Europe/Zurich";
const Localization english("en", "en_US", zone);
const Localization german("de", "de_DE", zone);

const Instant now = TimeZone::named(zone)->instant({2026, 11, 21, 14, 46, 0});

Instant minutesFromNow(double minutes) {
    return now + Seconds(minutes * 60);
}

} // namespace

TEST(UsageTexts, windowsHaveTheirNames) {
    struct Case {
        const char* id;
        const char* label;
        const char* brief;
    };
    for (const Case& test : {
             Case{"session", "Sitzung", "Sitzung"},
             Case{"weekly", "Woche", "Woche"},
             Case{"fable-weekly", "Woche · Fable", "Woche · Fable"},
             Case{"pool:Gemini Models|weekly", "Gemini-Modelle", "Gemini"},
             Case{"pool:GEMINI models|", "Gemini-Modelle", "Gemini"},
             Case{"pool:Gemini Models|5h", "Gemini-Modelle · 5 Std.", "Gemini · 5 Std."},
             Case{"pool:Claude and GPT models|daily", "Claude- und GPT-Modelle · Tag",
                  "Claude & GPT · Tag"},
             Case{"pool:Other Pool|monthly", "Other Pool · Monat", "Other Pool · Monat"},
             Case{"pool:Other Pool|Flash", "Other Pool · Flash", "Other Pool · Flash"},
             Case{"pool:no separator", "pool:no separator", "pool:no separator"},
             Case{"Gemini Models|5h", "Gemini Models|5h", "Gemini Models|5h"},
             Case{"\x1b[31mred\n", "red ", "red "},
         }) {
        EXPECT_EQ(windowLabel(test.id, german), test.label);
        EXPECT_EQ(windowLabel(test.id, german, true), test.brief);
    }
}

TEST(UsageTexts, resetsSayWhenAndWhetherItCame) {
    struct Case {
        double minutes;
        const char* english;
        const char* german;
    };
    for (const Case& test : {
             Case{89, "Resets in 1 h 29 min · 4:15 PM", "Reset in 1 Std. 29 Min. · 16:15"},
             Case{2544, "Resets in 1 d 18 h · Mon 9:10 AM", "Reset in 1 Tg. 18 Std. · Mo., 09:10"},
             Case{0.5, "Resets in under 1 min · 2:46 PM", "Reset in unter 1 Min. · 14:46"},
             Case{-31, "Reset due at 2:15 PM, not confirmed",
                  "Reset um 14:15 fällig, noch nicht bestätigt"},
             Case{-1776, "Reset due on Fri 9:10 AM, not confirmed",
                  "Reset am Fr., 09:10 fällig, noch nicht bestätigt"},
         }) {
        const UsageWindow window{"w", 50, 300.0, minutesFromNow(test.minutes)};
        EXPECT_EQ(resetText(window, now, english), test.english);
        EXPECT_EQ(resetText(window, now, german), test.german);
    }
    EXPECT_EQ(resetText({"w", 50, {}, {}}, now, english), "");
}

TEST(UsageTexts, forecastsClaimNoFalsePrecision) {
    const UsageWindow window{"w", 50, 10080.0, minutesFromNow(43 * 60 + 10)};
    struct Case {
        std::optional<double> minutes;
        const char* text;
        const char* brief;
    };
    for (const Case& test : {
             Case{23 * 60 + 45, "Runs out in 23 h, 19 h before reset", "Runs out in 23 h"},
             Case{125, "Runs out in 2 h 5 min, 41 h before reset", "Runs out in 2 h 5 min"},
             Case{42 * 60, "Runs out in 42 h, 70 min before reset", "Runs out in 42 h"},
             Case{0, "Used up until the reset", "Used up until the reset"},
             Case{{}, "Lasts until the reset", "Lasts until the reset"},
         }) {
        Forecast outlook;
        if (test.minutes) {
            outlook.emptyAt = minutesFromNow(*test.minutes);
        }
        EXPECT_EQ(forecastText(outlook, window, now, english), test.text);
        EXPECT_EQ(forecastText(outlook, window, now, english, true), test.brief);
    }
    EXPECT_EQ(forecastText({minutesFromNow(16)}, {"w", 93, 300.0, minutesFromNow(86)}, now, german),
              "Leer in 16 Min., 70 Min. vor dem Reset");
}

TEST(UsageTexts, planningAndCredits) {
    EXPECT_EQ(planningText({Planning::Kind::deficit, -9.6}, english), "10 points below plan");
    EXPECT_EQ(planningText({Planning::Kind::reserve, 17.4}, german), "17 Punkte über Plan");
    EXPECT_EQ(planningText({Planning::Kind::onPlan, 4}, german), "Im Plan");
    EXPECT_EQ(creditText(CreditInfo::line("$3.20 / $50.00 spent"), german), "$3.20 / $50.00 spent");
    EXPECT_EQ(creditText(CreditInfo::available(), german), "Guthaben vorhanden");
}

TEST(UsageProviderError, saysWhatHappened) {
    using Error = UsageProviderError;
    struct Case {
        Error error;
        const char* english;
    };
    for (const Case& test : {
             Case{Error::executableMissing("Antigravity CLI"), "Antigravity CLI not found."},
             Case{Error::launchFailed("Codex", "Permission denied"),
                  "Codex could not be started: Permission denied"},
             Case{Error::claudeReadFailed(3, "no prompt"),
                  "Claude Code could not be read (status 3): no prompt"},
             Case{Error::claudeReadFailed(3, ""), "Claude Code could not be read (status 3)."},
             Case{Error::codexReadFailed(" \n"), "Codex could not be read."},
             Case{Error::codexReadFailed("one\n\x1b[31mtwo %@"),
                  "Codex could not be read: one two %@"},
             Case{Error::other("as it\nstands %@"), "as it\nstands %@"},
             Case{Error(Error::Kind::claudeTempFileFailed),
                  "A temporary file could not be created. Check that the disk has free space."},
         }) {
        EXPECT_EQ(test.error.message(english), test.english);
    }
    std::string talkative;
    for (int line = 0; line < 5000; ++line)
        talkative += "täglich\n";
    const std::string told = Error::codexReadFailed(talkative + "the reason").message(english);
    EXPECT_LT(told.size(), 500u);
    EXPECT_TRUE(told.starts_with("Codex could not be read: …") && told.ends_with(" the reason"));
    EXPECT_EQ(Error::timeout("Codex").messageKey(), "error.timeout");
    EXPECT_EQ(Error(Error::Kind::claudeTempFileFailed).messageKey(), "error.claude.tempFile");
    EXPECT_EQ(Error::other("error.timeout").messageKey(), std::nullopt);
    EXPECT_EQ(Error::other("error.timeout").message(english), "error.timeout");
}

TEST(UsageProviderError, everyCaseHasAText) {
    for (int kind = 0; kind <= static_cast<int>(UsageProviderError::Kind::antigravityNoQuotas);
         ++kind) {
        const UsageProviderError error(static_cast<UsageProviderError::Kind>(kind));
        if (const auto key = error.messageKey()) {
            EXPECT_NE(english.text(*key), *key);
        }
    }
}

} // namespace vellmark
