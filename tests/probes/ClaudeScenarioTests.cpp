// Claude's probe from end to end: simulated CLI, real interpreter, real terminal, real files.

#include "AgentScenario.h"
#include "probes/claude/ClaudeLoginCheck.h"
#include "probes/claude/ClaudeUsageProvider.h"
#include "support/ProjectDirectories.h"

#include <chrono>
#include <fstream>
#include <iterator>

namespace vellmark::tests {
namespace {

using Kind = UsageProviderError::Kind;

const std::vector<std::string> allWindows = {"session", "weekly", "fable-weekly"};

/// Pauses that the simulated CLI needs; steps wait as long as shipped, so that a busy machine makes
/// no difference.
ClaudeUsageProvider::Limits quickLimits() {
    ClaudeUsageProvider::Limits limits;
    limits.loginCheckGrace = Seconds(0.2);
    limits.leastForSession = Seconds(0.05);
    limits.killGrace = Seconds(0.3);
    limits.session.statusPauseMs = 30;
    limits.session.statusEscapePauseMs = 30;
    limits.session.missingStatusPauseMs = 30;
    limits.session.loggedOutPauseMs = 30;
    limits.session.loggedOutExitPauseMs = 30;
    limits.session.markedCapMs = 60000;
    limits.session.unmarkedCapMs = 60000;
    limits.session.unmarkedQuietSeconds = 1;
    limits.session.leavePauseMs = 30;
    limits.session.exitPauseMs = 100;
    return limits;
}

/// For sessions in which a step is to run out of time.
ClaudeUsageProvider::Limits impatientLimits(int stepTimeoutSeconds) {
    ClaudeUsageProvider::Limits limits = quickLimits();
    limits.session.stepTimeoutSeconds = stepTimeoutSeconds;
    return limits;
}

class ClaudeScenario : public testing::Test {
protected:
    void TearDown() override {
        EXPECT_FALSE(sandbox.leftTemporaryFiles());
        EXPECT_EQ(sandbox.survivors(), std::vector<std::string>());
    }

    FetchOutcome fetch(const ClaudeUsageProvider::Limits& limits = quickLimits(),
                       Seconds hardLimit = Seconds(60)) {
        ClaudeUsageProvider provider(sandbox.machine(), hardLimit, limits);
        return outcomeOf(provider);
    }

    AgentUsageSnapshot snapshot(const ClaudeUsageProvider::Limits& limits = quickLimits()) {
        const FetchOutcome outcome = fetch(limits);
        if (const auto* error = std::get_if<UsageProviderError>(&outcome)) {
            ADD_FAILURE() << error->what();
            return {};
        }
        return std::get<AgentUsageSnapshot>(outcome);
    }

    std::filesystem::path diagnostics(const std::string& name) {
        return sandbox.machine().supportDirectory() / "Diagnostics" / name;
    }

    AgentSandbox sandbox;
};

class ClaudeOutcomes : public ClaudeScenario, public testing::WithParamInterface<AgentScenario> {};

TEST_P(ClaudeOutcomes, areTheReadingOrItsReason) {
    sandbox.play("claude", GetParam().scenario);
    expectOutcome(fetch(quickLimits(), GetParam().limit), GetParam());
}

INSTANTIATE_TEST_SUITE_P(
    , ClaudeOutcomes,
    testing::Values(AgentScenario{"normal", {}, allWindows},
                    AgentScenario{"slow\ndelay=250", {}, allWindows},
                    AgentScenario{"split", {}, allWindows}, AgentScenario{"huge", {}, allWindows},
                    AgentScenario{"first-start", {}, allWindows},
                    // The interpreter leaves in time; the CLI ignores that its terminal has gone.
                    AgentScenario{"lingers", {}, allWindows},
                    AgentScenario{"session-only", {}, {"session"}},
                    AgentScenario{"normal\nfable-used=none", {}, {"session", "weekly"}},
                    AgentScenario{"dies-after-session", {}, {"session"}},
                    AgentScenario{"logged-out", UsageProviderError(Kind::claudeNotLoggedIn), {}},
                    AgentScenario{"login-lies", UsageProviderError(Kind::claudeNotLoggedIn), {}},
                    AgentScenario{"login-crash", {}, allWindows},
                    AgentScenario{"login-garbage", {}, allWindows},
                    AgentScenario{"dies", UsageProviderError::timeout("Claude"), {}},
                    AgentScenario{"deaf", UsageProviderError::timeout("Claude"), {}, Seconds(1.5)},
                    AgentScenario{"hang", UsageProviderError::timeout("Claude"), {}, Seconds(1.5)}),
    scenarioTestName);

class ClaudePatience : public ClaudeScenario, public testing::WithParamInterface<AgentScenario> {};

TEST_P(ClaudePatience, endsWithTheStepThatDoesNotCome) {
    sandbox.play("claude", GetParam().scenario);
    expectOutcome(fetch(impatientLimits(1)), GetParam());
}

INSTANTIATE_TEST_SUITE_P(
    , ClaudePatience,
    testing::Values(AgentScenario{"no-prompt", UsageProviderError::timeout("Claude"), {}},
                    AgentScenario{"usage-hangs", UsageProviderError::timeout("Claude"), {}},
                    AgentScenario{"garbage", UsageProviderError::timeout("Claude"), {}}),
    scenarioTestName);

TEST_F(ClaudeScenario, reportsAPageThatCouldNotBeLoaded) {
    sandbox.play("claude", "page-error");
    // Long enough for a busy machine to come to the page.
    expectOutcome(fetch(impatientLimits(4)),
                  {"", UsageProviderError::claudePageError("Esc to retry"), {}});
}

TEST_F(ClaudeScenario, readsFiguresAccountAndTimes) {
    const Instant before = ReferenceClock::now();
    const AgentUsageSnapshot reading = snapshot();
    ASSERT_EQ(reading.windows.size(), 3u);
    EXPECT_EQ(reading.windows[0].usedPercent, 54);
    EXPECT_EQ(reading.windows[1].usedPercent, 71);
    EXPECT_EQ(reading.windows[2].usedPercent, 84);
    ASSERT_TRUE(reading.windows[0].resetsAt);
    EXPECT_NEAR((*reading.windows[0].resetsAt - before).count(), 2 * 3600 + 12 * 60, 90);
    ASSERT_TRUE(reading.windows[1].resetsAt);
    EXPECT_NEAR((*reading.windows[1].resetsAt - before).count(), 43 * 3600, 90);
    EXPECT_EQ(reading.accountLabel, "name@example.org");
    EXPECT_EQ(reading.plan, "Max 20x");
    EXPECT_EQ(reading.credit, CreditInfo::line("$3.20 / $20.00 spent"));
    ASSERT_EQ(reading.notes.size(), 1u);
    const auto& timing = std::get<SnapshotNote::ClaudeTiming>(reading.notes[0].value);
    EXPECT_GE(timing.quietMs, 1000);
    EXPECT_GE(timing.endMs, 100);
}

TEST_F(ClaudeScenario, reportsWhenTheCLIIsNotInstalled) {
    sandbox.uninstall("claude");
    expectOutcome(fetch(), {"", UsageProviderError::executableMissing("Claude Code"), {}});
}

TEST_F(ClaudeScenario, reportsAnInterpreterThatIsNotThere) {
    ClaudeUsageProvider provider(sandbox.machine(), Seconds(60), quickLimits(), "/nowhere/expect");
    expectOutcome(
        outcomeOf(provider),
        {"", UsageProviderError::launchFailed("Claude Code", "No such file or directory"), {}});
}

TEST_F(ClaudeScenario, passesOnThatTheWorkspaceCannotBeMade) {
    std::filesystem::create_directories(sandbox.machine().applicationSupport);
    std::ofstream(sandbox.machine().supportDirectory()) << "a file in the way";
    ClaudeUsageProvider provider(sandbox.machine(), Seconds(60), quickLimits());
    EXPECT_THROW(provider.fetch(), std::filesystem::filesystem_error);
}

TEST_F(ClaudeScenario, reportsATemporaryDirectoryThatIsGone) {
    AgentSandbox other;
    other.machine().temporary /= "gone";
    ClaudeUsageProvider provider(other.machine(), Seconds(60), quickLimits());
    expectOutcome(outcomeOf(provider), {"", UsageProviderError(Kind::claudeTempFileFailed), {}});
}

TEST_F(ClaudeScenario, startsNoSessionWithoutTimeForIt) {
    sandbox.installScript("claude", "test \"$1\" = auth || touch \"$HOME/started\"\n");
    ClaudeUsageProvider provider(sandbox.machine(), Seconds(5));
    expectOutcome(outcomeOf(provider), {"", UsageProviderError::timeout("Claude"), {}});
    EXPECT_FALSE(std::filesystem::exists(sandbox.machine().home / "started"));
}

TEST_F(ClaudeScenario, quotesACLIThatEndsEarly) {
    // The interpreter tries a file that is no program as a script of the shell.
    sandbox.installNoProgram("claude");
    const FetchOutcome noProgram = fetch();
    ASSERT_TRUE(std::holds_alternative<UsageProviderError>(noProgram));
    EXPECT_EQ(std::get<UsageProviderError>(noProgram).code(), 125);

    sandbox.install("claude", builtProgram("vellmark-simulator"));
    for (const auto& [scenario, words] : {std::pair("dies-at-start", "cannot read the settings"),
                                          std::pair("dies-at-status", "Segmentation")}) {
        sandbox.play("claude", scenario);
        const FetchOutcome outcome = fetch();
        const auto* error = std::get_if<UsageProviderError>(&outcome);
        ASSERT_TRUE(error) << scenario;
        EXPECT_EQ(error->kind(), Kind::claudeReadFailed);
        EXPECT_EQ(error->code(), 125);
        EXPECT_NE(error->texts().at(0).find(words), std::string::npos) << error->texts().at(0);
    }
}

TEST_F(ClaudeScenario, keepsAPageThatItCannotRead) {
    sandbox.play("claude", "empty-page");
    const std::filesystem::path file = diagnostics("claude-usage-last.txt");
    expectOutcome(fetch(), {"", UsageProviderError::claudeNoQuotasDiagnosed(file.string()), {}});
    const std::string kept = contentOf(file);
    EXPECT_NE(kept.find("What's contributing"), std::string::npos);
    EXPECT_NE(kept.find("Email: <redacted>"), std::string::npos);
    EXPECT_EQ(kept.find("example.org"), std::string::npos);
    EXPECT_EQ(kept.find(sandbox.machine().home.string()), std::string::npos);
}

TEST_F(ClaudeScenario, givesTheParsersReasonWhenThePageCannotBeKept) {
    sandbox.play("claude", "empty-page");
    std::filesystem::create_directories(sandbox.machine().supportDirectory());
    std::ofstream(sandbox.machine().supportDirectory() / "Diagnostics") << "a file in the way";
    expectOutcome(fetch(), {"", UsageProviderError(Kind::claudeNoQuotas), {}});
}

TEST_F(ClaudeScenario, takesBytesThatAreNoTextForAnEmptyPage) {
    // In the C locale the interpreter passes bytes on as they are.
    sandbox.machine().environment["LC_ALL"] = "C";
    sandbox.play("claude", "invalid-utf8");
    const std::string file = diagnostics("claude-usage-last.txt").string();
    expectOutcome(fetch(), {"", UsageProviderError::claudeNoQuotasDiagnosed(file), {}});
    EXPECT_EQ(contentOf(file), "");
}

TEST_F(ClaudeScenario, notesAPageWithoutAKnownEnd) {
    sandbox.play("claude", "no-end-marker");
    const AgentUsageSnapshot reading = snapshot();
    EXPECT_EQ(reading.windows.size(), 3u);
    ASSERT_EQ(reading.notes.size(), 2u);
    EXPECT_EQ(
        reading.notes[0],
        (SnapshotNote{SnapshotNote::ClaudeEndMarkerMissing{"Last refreshed  s ago, cache  warm"}}));
    EXPECT_NE(contentOf(diagnostics("claude-usage-ending.txt")).find("Last refreshed 12 s ago"),
              std::string::npos);
}

TEST_F(ClaudeScenario, takesTheSpendLineForThePagesEnd) {
    sandbox.play("claude", "late-credits");
    const AgentUsageSnapshot reading = snapshot();
    EXPECT_EQ(reading.credit, CreditInfo::line("$3.20 / $20.00 spent"));
    ASSERT_EQ(reading.notes.size(), 1u);
    EXPECT_TRUE(std::holds_alternative<SnapshotNote::ClaudeTiming>(reading.notes[0].value));
    EXPECT_FALSE(std::filesystem::exists(diagnostics("claude-usage-ending.txt")));
}

TEST_F(ClaudeScenario, hasNoTimesOfASessionWithoutStatusScreen) {
    sandbox.play("claude", "no-status");
    const AgentUsageSnapshot reading = snapshot(impatientLimits(4));
    EXPECT_EQ(reading.windows.size(), 3u);
    EXPECT_EQ(reading.accountLabel, std::nullopt);
    EXPECT_EQ(reading.notes, std::vector<SnapshotNote>());
}

TEST_F(ClaudeScenario, waitsForTheModelsWindowOnceItWasSeen) {
    sandbox.play("claude", "fable-late\nfable-delay=3500");
    ClaudeUsageProvider provider(sandbox.machine(), Seconds(60), quickLimits());
    EXPECT_EQ(provider.fetch().windows.size(), 2u);
    sandbox.play("claude", "normal");
    EXPECT_EQ(provider.fetch().windows.size(), 3u);
    sandbox.play("claude", "fable-late\nfable-delay=3500");
    EXPECT_EQ(provider.fetch().windows.size(), 3u);
}

TEST_F(ClaudeScenario, recordsInAPrivateFileAndWaitsForTheModelOfTheLastDay) {
    // Without a prompt the session ends at once; the CLI has seen where it runs by then.
    sandbox.installScript("claude", "if [ \"$1\" = auth ]; then exit; fi\n"
                                    "pwd >\"$HOME/seen\"\n"
                                    "echo $VELLMARK_EXPECT_FABLE >>\"$HOME/seen\"\n"
                                    "cd \"$TMPDIR\" && ls -l vellmark-claude-*.log |"
                                    " cut -c1-10 >>\"$HOME/seen\"\n");
    const std::filesystem::path history = sandbox.machine().usageHistoryFile();
    const std::filesystem::path workspace =
        sandbox.machine().supportDirectory() / "ClaudeWorkspace";
    for (const auto& [hours, expected] : {std::pair(23.0, "1"), std::pair(24.0, "0")}) {
        const double seen =
            (ReferenceClock::now() - Seconds(hours * 3600)).time_since_epoch().count();
        std::filesystem::create_directories(history.parent_path());
        std::ofstream(history)
            << R"([{"id":"8C1D7A52-40CF-4B3B-9B0F-6B2C4B7F4A11",)"
            << R"("provider":"claude","windowID":"fable-weekly","usedPercent":1,)"
            << R"("capturedAt":)" << std::to_string(seen) << "}]";
        fetch();
        EXPECT_EQ(contentOf(sandbox.machine().home / "seen"),
                  workspace.string() + "\n" + expected + "\n-rw-------\n");
    }
    // What a killed program left behind goes; what another one is writing now stays.
    const std::filesystem::path temporary = sandbox.machine().temporary;
    for (const char* name : {"vellmark-claude-OLD.log", "vellmark-claude-NEW.log"})
        std::ofstream(temporary / name) << "a screen";
    const auto longAgo = std::filesystem::file_time_type::clock::now() - std::chrono::minutes(11);
    std::filesystem::last_write_time(temporary / "vellmark-claude-OLD.log", longAgo);
    fetch();
    EXPECT_FALSE(std::filesystem::exists(temporary / "vellmark-claude-OLD.log"));
    EXPECT_TRUE(std::filesystem::remove(temporary / "vellmark-claude-NEW.log"));
}

struct LoginCase {
    const char* scenario;
    std::optional<bool> expected;
};

TEST_F(ClaudeScenario, knowsWhetherTheUserIsLoggedInOrDoesNot) {
    const LoginCase cases[] = {{"normal", true},     {"logged-out", false}, {"login-hang", {}},
                               {"login-deaf", {}},   {"login-crash", {}},   {"login-garbage", {}},
                               {"login-string", {}}, {"login-huge", {}}};
    for (const LoginCase& test : cases) {
        sandbox.play("claude", test.scenario);
        const bool hangs = std::string_view(test.scenario) == "login-hang" ||
                           std::string_view(test.scenario) == "login-deaf";
        EXPECT_EQ(claudeIsLoggedIn(sandbox.machine(), sandbox.machine().home / ".local/bin/claude",
                                   Seconds(hangs ? 0.3 : 30), Seconds(0.2)),
                  test.expected)
            << test.scenario;
    }
    EXPECT_EQ(claudeIsLoggedIn(sandbox.machine(), "/nowhere/claude"), std::nullopt);
}

} // namespace
} // namespace vellmark::tests
