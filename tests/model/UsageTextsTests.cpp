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

TEST(UsageTexts, WindowsHaveTheirNames) {
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"session", "Sitzung", "Sitzung"},
        {"fable-weekly", "Woche · Fable", "Woche · Fable"},
        {"pool:Gemini Models|weekly", "Gemini-Modelle", "Gemini"},
        {"pool:GEMINI models|", "Gemini-Modelle", "Gemini"},
        {"pool:Claude and GPT models|daily", "Claude- und GPT-Modelle · Tag", "Claude & GPT · Tag"},
        {"pool:Other Pool|Flash", "Other Pool · Flash", "Other Pool · Flash"},
        {"pool:no separator", "pool:no separator", "pool:no separator"},
        {"\x1b[31mred\n", "red ", "red "},
    };
    for (const auto& [id, label, brief] : cases) {
        EXPECT_EQ(windowLabel(id, german), label);
        EXPECT_EQ(windowLabel(id, german, true), brief);
    }
}

TEST(UsageTexts, WindowsAreCalledWhatTheAgentSaysTheyAre) {
    const auto label = [](std::string id, std::optional<double> minutes,
                          std::optional<std::string> name, bool brief = false) {
        return windowLabel(UsageWindow{id, 0, minutes, {}, name}, english, brief);
    };
    EXPECT_EQ(label("session", 300, {}), "Session");
    EXPECT_EQ(label("session", 10080, {}), "Week"); // a plan whose only window is a week
    EXPECT_EQ(label("weekly", 43200, {}), "Month");
    EXPECT_EQ(label("session", 4 * 1440, {}), "Window of 4 d");
    EXPECT_EQ(label("opus-weekly", 10080, "Opus"), "Week · Opus");
    EXPECT_EQ(label("opus-weekly", 10080, {}), "Week · Opus");
    EXPECT_EQ(label("limit:spark|primary", 300, "GPT-5.3-Codex-Spark"),
              "GPT-5.3-Codex-Spark · Session");
    EXPECT_EQ(label("limit:spark|secondary", {}, {}), "spark · Week");
    EXPECT_EQ(label("limit:spark|secondary", {}, {}, true), "Week · spark");
    EXPECT_EQ(label("limit:spark|primary", 300, "\x1b[31mred\n"), "red  · Session");
}

TEST(UsageTexts, PlansAreCalledWhatPeopleCallThem) {
    const auto plan = [](AgentProviderID id, std::optional<std::string> given) {
        AgentUsageSnapshot snapshot;
        snapshot.id = std::move(id);
        snapshot.plan = std::move(given);
        return planText(snapshot);
    };
    const auto codex = AgentProviderID::codex();
    EXPECT_EQ(plan(codex, "Plus"), "Plus");
    EXPECT_EQ(plan(codex, "Prolite"), "Pro Lite");
    EXPECT_EQ(plan(codex, "Self_Serve_Business_Usage_Based"), "Business");
    EXPECT_EQ(plan(codex, "Team"), "Business");
    EXPECT_EQ(plan(codex, "Starship_9"), "Starship_9");
    EXPECT_EQ(plan(codex, ""), "");
    EXPECT_EQ(plan(codex, {}), "");
    EXPECT_EQ(plan(AgentProviderID::claude(), "Team"), "Team");
}

TEST(UsageTexts, ResetsSayWhenAndWhetherItCame) {
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

TEST(UsageTexts, ForecastsClaimNoFalsePrecision) {
    const UsageWindow window{"w", 50, 10080.0, minutesFromNow(43 * 60 + 10)};
    const std::tuple<std::optional<double>, const char*, const char*> cases[] = {
        {23 * 60 + 45, "Runs out in 23 h, 19 h before reset", "Runs out in 23 h"},
        {125, "Runs out in 2 h 5 min, 41 h before reset", "Runs out in 2 h 5 min"},
        {0, "At this pace, empty since 2:46 PM", "At this pace, empty since 2:46 PM"},
        {{}, "Lasts until the reset", "Lasts until the reset"},
    };
    for (const auto& [minutes, text, brief] : cases) {
        Forecast outlook;
        if (minutes) {
            outlook.emptyAt = minutesFromNow(*minutes);
        }
        EXPECT_EQ(forecastText(outlook, window, now, english), text);
        EXPECT_EQ(forecastText(outlook, window, now, english, true), brief);
    }
}

TEST(UsageTexts, UsedUpWindowsSayWhenTheyAreBack) {
    const UsageWindow week{"weekly", 100, 10080.0, minutesFromNow(2544)};
    EXPECT_EQ(usedUpText(week, now, english), "Used up · back Mon 9:10 AM");
    EXPECT_EQ(usedUpText({"weekly", 100, {}, {}}, now, german), "Aufgebraucht");
    EXPECT_EQ(waitingText(week, german), "Wartet auf die Woche");
    EXPECT_EQ(waitingText({"session", 100, 43200.0, {}}, german), "Wartet auf den Monat");
    EXPECT_EQ(waitingText({"individual", 100, 20 * 1440.0, {}}, english), "Waits for Own limit");
}

TEST(UsageTexts, DaysAreDeclined) {
    const UsageWindow week{"weekly", 50, 10080.0, minutesFromNow(3 * 1440 + 18 * 60)};
    EXPECT_EQ(resetText(week, now, german), "Reset in 3 Tagen 18 Std. · Mi., 08:46");
    EXPECT_EQ(forecastText({minutesFromNow(600)}, week, now, german),
              "Leer in 10 Std., 3 Tage vor dem Reset");
    const UsageWindow soon{"weekly", 50, 10080.0, minutesFromNow(1440)};
    EXPECT_EQ(resetText(soon, now, german), "Reset in 1 Tag · So., 14:46");
}

TEST(UsageTexts, CreditLinesOfAKnownFormSpeakTheUsersLanguage) {
    const auto text = [](const char* line, const Localization& words) {
        return creditText(CreditInfo::line(line), words);
    };
    EXPECT_EQ(text("$3.20 / $20.00 spent", english), "$3.20 / $20.00 spent");
    EXPECT_EQ(text("$3.20 / $20.00 spent", german), "$3.20 von $20.00 ausgegeben");
    EXPECT_EQ(text("$3.20 spent\x1b[31m", german), "$3.20 spent");
    EXPECT_EQ(text("none spent / all spent", german), "none spent / all spent");
}

TEST(UsageTexts, PlanningTellsWhichSideItIsOn) {
    EXPECT_EQ(planningText({Planning::Kind::deficit, -9.6}, english), "10 points short");
    EXPECT_EQ(planningText({Planning::Kind::reserve, 17.4}, english), "17 points in reserve");
    EXPECT_EQ(planningText({Planning::Kind::onPlan, 4}, english), "On pace");
}

TEST(UsageProviderError, SaysWhatHappened) {
    using Error = UsageProviderError;
    const std::pair<Error, const char*> cases[] = {
        {Error::executableMissing("Codex CLI"), "Codex CLI not found."},
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
    // The system's reasons are in the user's words where there are such, and quoted otherwise.
    EXPECT_EQ(
        Error::launchFailed("Codex", "/usr/bin/node: No such file or directory").message(german),
        "Codex ließ sich nicht starten: /usr/bin/node: Datei oder Verzeichnis nicht vorhanden");
    EXPECT_EQ(Error::launchFailed("Codex", "Exec format error").message(german),
              "Codex ließ sich nicht starten: Das ist kein ausführbares Programm");
    EXPECT_EQ(Error::launchFailed("Codex", "spawn failed").message(german),
              "Codex ließ sich nicht starten: „spawn failed“");
    EXPECT_EQ(Error::antigravityReadFailed("temporary file").message(german),
              "Antigravity ließ sich nicht lesen: es ließ sich keine temporäre Datei anlegen");
    EXPECT_EQ(
        Error::antigravityReadFailed("temporary file: No space left on device").message(german),
        "Antigravity ließ sich nicht lesen: temporäre Datei: Auf dem Laufwerk ist kein Platz "
        "mehr");
    EXPECT_EQ(Error::antigravityReadFailed("too much output").message(german),
              "Antigravity ließ sich nicht lesen: zu viel Ausgabe");
    EXPECT_EQ(Error::antigravityReadFailed("temporary filing error").message(german),
              "Antigravity ließ sich nicht lesen: temporary filing error");
    EXPECT_EQ(Error::executableMissing("Codex CLI").message(german), "Codex-CLI nicht gefunden.");
    std::string talkative;
    for (int line = 0; line < 5000; ++line) {
        talkative += "täglich\n";
    }
    const std::string told = Error::codexReadFailed(talkative + "the reason").message(english);
    EXPECT_LT(told.size(), 500u);
    EXPECT_TRUE(told.starts_with("Codex could not be read: …") && told.ends_with(" the reason"));
    EXPECT_EQ(Error::other("error.timeout").message(english), "error.timeout");
}

} // namespace vellmark
