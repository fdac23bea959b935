#include "model/UsageTexts.h"
#include "text/Dates.h"

#include <gtest/gtest.h>

#include <utility>

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
             Case{"fable-weekly", "Woche · Fable", "Woche · Fable"},
             Case{"pool:Gemini Models|weekly", "Gemini-Modelle", "Gemini"},
             Case{"pool:GEMINI models|", "Gemini-Modelle", "Gemini"},
             Case{"pool:Claude and GPT models|daily", "Claude- und GPT-Modelle · Tag",
                  "Claude & GPT · Tag"},
             Case{"pool:Other Pool|Flash", "Other Pool · Flash", "Other Pool · Flash"},
             Case{"pool:no separator", "pool:no separator", "pool:no separator"},
             Case{"\x1b[31mred\n", "red ", "red "},
         }) {
        EXPECT_EQ(windowLabel(test.id, german), test.label);
        EXPECT_EQ(windowLabel(test.id, german, true), test.brief);
    }
}

TEST(UsageTexts, resetsSayWhenAndWhetherItCame) {
    const std::pair<double, const char*> cases[] = {
        {2544, "Resets in 1 d 18 h · Mon 9:10 AM"},
        {0.5, "Resets in under 1 min · 2:46 PM"},
        {0, "Reset due at 2:46 PM, not confirmed"},
        {-1776, "Reset due on Fri 9:10 AM, not confirmed"},
    };
    for (const auto& [minutes, text] : cases) {
        const UsageWindow window{"w", 50, 300.0, minutesFromNow(minutes)};
        EXPECT_EQ(resetText(window, now, english), text);
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
}

TEST(UsageTexts, planningTellsWhichSideItIsOn) {
    EXPECT_EQ(planningText({Planning::Kind::deficit, -9.6}, english), "10 points below plan");
    EXPECT_EQ(planningText({Planning::Kind::reserve, 17.4}, english), "17 points above plan");
    EXPECT_EQ(planningText({Planning::Kind::onPlan, 4}, english), "On plan");
}

TEST(UsageProviderError, saysWhatHappened) {
    using Error = UsageProviderError;
    const std::pair<Error, const char*> cases[] = {
        {Error::launchFailed("Codex", "Permission denied"),
         "Codex could not be started: Permission denied"},
        {Error::claudeReadFailed(3, "no prompt"),
         "Claude Code could not be read (status 3): no prompt"},
        {Error::claudeReadFailed(3, ""), "Claude Code could not be read (status 3)."},
        {Error::codexReadFailed(" \n"), "Codex could not be read."},
        {Error::codexReadFailed("one\n\x1b[31mtwo %@"), "Codex could not be read: one two %@"},
        {Error::other("as it\nstands %@"), "as it\nstands %@"},
    };
    for (const auto& [error, text] : cases) {
        EXPECT_EQ(error.message(english), text);
    }
    std::string talkative;
    for (int line = 0; line < 5000; ++line)
        talkative += "täglich\n";
    const std::string told = Error::codexReadFailed(talkative + "the reason").message(english);
    EXPECT_LT(told.size(), 500u);
    EXPECT_TRUE(told.starts_with("Codex could not be read: …") && told.ends_with(" the reason"));
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
