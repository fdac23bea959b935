#include "report/SupportReport.h"
#include "support/ProjectDirectories.h"
#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <string>

namespace vellmark {
namespace {

const Localization german("de", "de_CH", "Europe/Zurich");

SupportReportInput madeUpInput() {
    SupportReportInput input;
    input.version = "1.0.0";
    input.build = "100";
    input.osVersion = "macOS 26.1";
    input.architecture = "arm64";
    input.languageCode = "de";
    input.region = "CH";
    input.date = instantFromUnixSeconds(1763646492); // 20 November 2025, 14:48:12 in Zurich
    input.agents = {{"Codex", true, "/Users/anna/.local/bin/codex", "codex-cli 0.61.0", true,
                     instantFromUnixSeconds(1763646365)},
                    {"Claude", true, "/Users/anna/.local/bin/claude", std::nullopt, false, {}},
                    {"Antigravity", false, std::nullopt, std::nullopt, std::nullopt, {}}};
    input.logText = "gelesen als anna@example.org";
    return input;
}

TEST(SupportReport, ListsFactsAgentsAndLogInOrder) {
    EXPECT_EQ(supportReportText(madeUpInput(), "/Users/anna", false, german),
              tests::contentOf(tests::sourceFile("tests/report/support-report.de")) +
                  german.text("report.privacy.note"));
}

TEST(SupportReport, TellsWhenAddressesWereLeftIn) {
    auto input = madeUpInput();
    input.logText.clear();
    input.agents[0].name = "anna@example.org";
    const auto text = supportReportText(input, "/Users/anna", true, german).value_or("");
    EXPECT_NE(text.find("anna@example.org (aktiv)"), std::string::npos);
    EXPECT_NE(text.find(german.text("report.log.empty")), std::string::npos);
    EXPECT_NE(text.find(german.text("report.privacy.withEmails")), std::string::npos);
}

TEST(SupportReport, FileNameTakesTheUsersDay) {
    const auto lateEvening = instantFromUnixSeconds(1763679600); // 23:00 UTC, midnight in Zurich
    EXPECT_EQ(supportReportFileName(lateEvening, german),
              "Vellmark-Support-Bericht-2025-11-21.txt");
}

} // namespace
} // namespace vellmark
