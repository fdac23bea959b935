// Claude's probe from end to end: simulated CLI, real interpreter, real terminal, real files.

#include "AgentScenario.h"
#include "ClaudeLimits.h"
#include "probes/claude/ClaudeLoginCheck.h"
#include "support/ProjectDirectories.h"

namespace vellmark::tests {
namespace {

using Kind = UsageProviderError::Kind;

const std::vector<std::string> allWindows = {"session", "weekly", "fable-weekly"};

/// The screens, whatever else the CLI can do.
const ReadingOptions session{.way = claudeSessionWay, .interval = {}};

/// For sessions in which a step is to run out of time.
ClaudeUsageProvider::Limits impatientLimits(int stepTimeoutSeconds) {
    ClaudeUsageProvider::Limits limits = quickClaudeLimits();
    limits.session.timings.stepTimeoutSeconds = stepTimeoutSeconds;
    return limits;
}

/// The notes about the screen; those about the way of reading come with every session.
std::vector<SnapshotNote> ofTheScreen(const AgentUsageSnapshot& reading) {
    std::vector<SnapshotNote> notes = reading.notes;
    std::erase_if(notes, [](const SnapshotNote& note) {
        return std::holds_alternative<SnapshotNote::ReadingWay>(note.value) ||
               std::holds_alternative<SnapshotNote::ReadingCosts>(note.value);
    });
    return notes;
}

class ClaudeScenario : public ScenarioTest {
protected:
    FetchOutcome fetch(const ClaudeUsageProvider::Limits& limits = quickClaudeLimits(),
                       Seconds hardLimit = Seconds(60)) {
        ClaudeUsageProvider provider(sandbox.machine(), hardLimit, session, limits);
        return outcomeOf(provider);
    }

    AgentUsageSnapshot snapshot(const ClaudeUsageProvider::Limits& limits = quickClaudeLimits()) {
        const FetchOutcome outcome = fetch(limits);
        if (const auto* error = std::get_if<UsageProviderError>(&outcome)) {
            ADD_FAILURE() << error->what();
            return {};
        }
        return std::get<AgentUsageSnapshot>(outcome);
    }

    fs::path diagnostics(const std::string& name) {
        return sandbox.machine().supportDirectory() / "Diagnostics" / name;
    }
};

class ClaudeOutcomes : public ClaudeScenario, public testing::WithParamInterface<AgentScenario> {};

TEST_P(ClaudeOutcomes, AreTheReadingOrItsReason) {
    sandbox.play("claude", GetParam().scenario);
    ClaudeUsageProvider::Limits limits = quickClaudeLimits();
    if (GetParam().scenario == "split" || GetParam().scenario == "huge") {
        // The interpreter counts whole seconds: of one, nothing is left to wait for the rest of a
        // character that came in two pieces as the clock's second changed.
        limits.session.timings.markedQuietSeconds = 2;
    }
    expectOutcome(fetch(limits, GetParam().limit), GetParam());
}

INSTANTIATE_TEST_SUITE_P(
    , ClaudeOutcomes,
    testing::Values(
        reads("normal", allWindows), reads("slow\ndelay=250", allWindows),
        reads("split", allWindows), reads("huge", allWindows), reads("first-start", allWindows),
        // The interpreter leaves in time; the CLI ignores that its terminal has gone.
        reads("lingers", allWindows), reads("session-only", {"session"}),
        reads("dies-after-session", {"session"}), fails("logged-out", Kind::claudeNotLoggedIn),
        fails("login-lies", Kind::claudeNotLoggedIn), reads("login-crash", allWindows),
        reads("login-garbage", allWindows), fails("dies", UsageProviderError::timeout("Claude")),
        fails("deaf", UsageProviderError::timeout("Claude"), Seconds(1.5)),
        fails("hang", UsageProviderError::timeout("Claude"), Seconds(1.5))),
    scenarioTestName);

TEST_F(ClaudeScenario, EndsWithTheStepThatDoesNotCome) {
    for (const char* scenario : {"no-prompt", "usage-hangs", "garbage"}) {
        SCOPED_TRACE(scenario);
        sandbox.play("claude", scenario);
        expectFailure(fetch(impatientLimits(1)), UsageProviderError::timeout("Claude"));
    }
}

TEST_F(ClaudeScenario, ReportsAPageThatCouldNotBeLoaded) {
    sandbox.play("claude", "page-error");
    // Long enough for a busy machine to come to the page.
    expectFailure(fetch(impatientLimits(4)), UsageProviderError::claudePageError("Esc to retry"));
}

TEST_F(ClaudeScenario, ReadsFiguresAccountAndTimes) {
    const Instant before = ReferenceClock::now();
    const AgentUsageSnapshot reading = snapshot();
    ASSERT_EQ(reading.windows.size(), 3u);
    EXPECT_EQ(reading.windows[0].usedPercent, 54);
    EXPECT_EQ(reading.windows[1].usedPercent, 71);
    EXPECT_EQ(reading.windows[2].usedPercent, 84);
    ASSERT_TRUE(reading.windows[1].resetsAt);
    EXPECT_NEAR((*reading.windows[1].resetsAt - before).count(), 43 * 3600, 90);
    EXPECT_EQ(reading.accountLabel, "name@example.org");
    EXPECT_EQ(reading.plan, "Max 20x");
    EXPECT_EQ(reading.credit, CreditInfo::line("$3.20 / $20.00 spent"));
    ASSERT_EQ(ofTheScreen(reading).size(), 1u);
    const auto timing = std::get<SnapshotNote::ClaudeTiming>(ofTheScreen(reading)[0].value);
    EXPECT_GE(timing.quietMs, 1000);
    EXPECT_GE(timing.endMs, 100);
}

TEST_F(ClaudeScenario, ReportsWhatKeepsItFromStarting) {
    ClaudeUsageProvider unscripted(sandbox.machine(), Seconds(60), session, quickClaudeLimits(),
                                   "/nowhere/expect");
    expectFailure(outcomeOf(unscripted),
                  UsageProviderError::launchFailed("Claude Code", "No such file or directory"));
    fs::remove_all(sandbox.machine().supportDirectory());
    writeFile(sandbox.machine().supportDirectory(), "a file in the way of the workspace");
    EXPECT_THROW(fetch(), fs::filesystem_error);
    sandbox.uninstall("claude");
    expectFailure(fetch(), UsageProviderError::executableMissing("Claude Code"));
    fs::remove(sandbox.machine().supportDirectory());
    sandbox.installNoProgram("claude", "#!/nowhere/node\n");
    for (const char* way : {claudeSessionWay, claudeQueryWay}) {
        ClaudeUsageProvider provider(sandbox.machine(), Seconds(60), {.way = way, .interval = {}},
                                     quickClaudeLimits());
        expectFailure(outcomeOf(provider),
                      UsageProviderError::launchFailed("Claude Code",
                                                       "/nowhere/node: No such file or directory"));
    }

    AgentSandbox other;
    other.machine().temporary /= "gone";
    ClaudeUsageProvider provider(other.machine(), Seconds(60), session, quickClaudeLimits());
    expectFailure(outcomeOf(provider), Kind::claudeTempFileFailed);
}

TEST_F(ClaudeScenario, StartsNoSessionWithoutTimeForIt) {
    sandbox.installScript("claude", "test \"$1\" = auth || touch \"$HOME/started\"\n");
    ClaudeUsageProvider provider(sandbox.machine(), Seconds(5), session);
    expectFailure(outcomeOf(provider), UsageProviderError::timeout("Claude"));
    EXPECT_FALSE(fs::exists(sandbox.machine().home / "started"));
}

// The screens say "6:15am" of the zone that the CLI runs in.
TEST_F(ClaudeScenario, RunsTheSessionInTheZoneThatItsTimesAreReadIn) {
    sandbox.machine().environment["TZ"] = "America/Los_Angeles";
    sandbox.installScript("claude", "test \"$1\" = auth || echo \"$TZ\" > \"$HOME/zone\"\n");
    expectFailure(fetch(), UsageProviderError::claudeReadFailed(125, ""));
    EXPECT_EQ(contentOf(sandbox.machine().home / "zone"), "Europe/Zurich\n");
}

TEST_F(ClaudeScenario, QuotesACLIThatEndsEarly) {
    // The interpreter tries a file that is no program as a script of the shell.
    sandbox.installNoProgram("claude");
    const auto quotes = [this](const char* words) {
        const FetchOutcome outcome = fetch();
        ASSERT_EQ(failureOf(outcome), Kind::claudeReadFailed);
        const auto& error = std::get<UsageProviderError>(outcome);
        EXPECT_EQ(error.code(), 125);
        EXPECT_NE(error.texts().at(0).find(words), std::string::npos) << error.texts().at(0);
    };
    quotes("");
    sandbox.install("claude", builtProgram("vellmark-simulator"));
    sandbox.play("claude", "dies-at-start");
    quotes("cannot read the settings");
    sandbox.play("claude", "dies-at-status");
    quotes("Segmentation");
}

TEST_F(ClaudeScenario, KeepsAPageThatItCannotRead) {
    sandbox.play("claude", "empty-page");
    const fs::path file = diagnostics("claude-usage-last.txt");
    expectFailure(fetch(), UsageProviderError::claudeNoQuotasDiagnosed(file.string()));
    const std::string kept = contentOf(file);
    EXPECT_NE(kept.find("What's contributing"), std::string::npos);
    EXPECT_NE(kept.find("Email: <redacted>"), std::string::npos);
    EXPECT_EQ(kept.find("example.org"), std::string::npos);
    EXPECT_EQ(kept.find(sandbox.machine().home.string()), std::string::npos);

    // Where it cannot be kept, the parser's reason is told.
    fs::remove_all(file.parent_path());
    writeFile(file.parent_path(), "a file in the way");
    expectFailure(fetch(), Kind::claudeNoQuotas);
}

TEST_F(ClaudeScenario, TakesBytesThatAreNoTextForAnEmptyPage) {
    // In the C locale the interpreter passes bytes on as they are.
    sandbox.machine().environment["LC_ALL"] = "C";
    sandbox.play("claude", "invalid-utf8");
    const std::string file = diagnostics("claude-usage-last.txt").string();
    expectFailure(fetch(), UsageProviderError::claudeNoQuotasDiagnosed(file));
    EXPECT_EQ(contentOf(file), "");
}

TEST_F(ClaudeScenario, NotesAPageWithoutAKnownEnd) {
    sandbox.play("claude", "no-end-marker");
    const AgentUsageSnapshot reading = snapshot();
    EXPECT_EQ(reading.windows.size(), 3u);
    ASSERT_EQ(ofTheScreen(reading).size(), 2u);
    EXPECT_EQ(
        ofTheScreen(reading)[0],
        (SnapshotNote{SnapshotNote::ClaudeEndMarkerMissing{"Last refreshed  s ago, cache  warm"}}));
    EXPECT_NE(contentOf(diagnostics("claude-usage-ending.txt")).find("Last refreshed 12 s ago"),
              std::string::npos);
}

TEST_F(ClaudeScenario, TakesTheSpendLineForThePagesEnd) {
    sandbox.play("claude", "late-credits");
    const AgentUsageSnapshot reading = snapshot();
    EXPECT_EQ(reading.credit, CreditInfo::line("$3.20 / $20.00 spent"));
    ASSERT_EQ(ofTheScreen(reading).size(), 1u);
    EXPECT_TRUE(std::holds_alternative<SnapshotNote::ClaudeTiming>(ofTheScreen(reading)[0].value));
    EXPECT_FALSE(fs::exists(diagnostics("claude-usage-ending.txt")));
}

TEST_F(ClaudeScenario, HasNoTimesOfASessionWithoutStatusScreen) {
    sandbox.play("claude", "no-status");
    const AgentUsageSnapshot reading = snapshot(impatientLimits(4));
    EXPECT_EQ(reading.windows.size(), 3u);
    EXPECT_EQ(reading.accountLabel, std::nullopt);
    EXPECT_EQ(ofTheScreen(reading), std::vector<SnapshotNote>());
}

TEST_F(ClaudeScenario, WaitsForTheModelsWindowOnceItWasSeen) {
    sandbox.play("claude", "fable-late\nfable-delay=3500");
    ClaudeUsageProvider provider(sandbox.machine(), Seconds(60), session, quickClaudeLimits());
    EXPECT_EQ(provider.fetch().windows.size(), 2u);
    sandbox.play("claude", "normal");
    EXPECT_EQ(provider.fetch().windows.size(), 3u);
    sandbox.play("claude", "fable-late\nfable-delay=3500");
    EXPECT_EQ(provider.fetch().windows.size(), 3u);
}

TEST_F(ClaudeScenario, RecordsWithoutAFileToBeFoundAndWaitsForTheModelOfTheLastDay) {
    // Without a prompt the session ends at once; the CLI has seen where it runs by then.
    sandbox.installScript("claude", "if [ \"$1\" = auth ]; then exit; fi\n"
                                    "pwd >\"$HOME/seen\"\n"
                                    "echo $VELLMARK_EXPECT_FABLE >>\"$HOME/seen\"\n"
                                    "ls -A \"$TMPDIR\" >>\"$HOME/seen\"\n");
    const fs::path history = sandbox.machine().usageHistoryFile();
    const fs::path workspace = sandbox.machine().supportDirectory() / "ClaudeWorkspace";
    for (const auto& [hours, expected] : {std::pair(23.0, "1"), std::pair(24.0, "0")}) {
        const double seen =
            (ReferenceClock::now() - Seconds(hours * 3600)).time_since_epoch().count();
        writeFile(history, R"([{"id":"8C1D7A52-40CF-4B3B-9B0F-6B2C4B7F4A11",)"
                           R"("provider":"claude","windowID":"fable-weekly","usedPercent":1,)"
                           R"("capturedAt":)" +
                               std::to_string(seen) + "}]");
        fetch();
        EXPECT_EQ(contentOf(sandbox.machine().home / "seen"),
                  workspace.string() + "\n" + expected + "\n");
    }
}

TEST_F(ClaudeScenario, KnowsWhetherTheUserIsLoggedInOrDoesNot) {
    const auto check = [this](const char* scenario, Seconds limit) {
        sandbox.play("claude", scenario);
        return claudeLogin(sandbox.machine(), sandbox.machine().home / ".local/bin/claude", limit,
                           Seconds(0.2))
            .isLoggedIn;
    };
    EXPECT_EQ(check("normal", Seconds(30)), true);
    EXPECT_EQ(check("logged-out", Seconds(30)), false);
    for (const char* scenario : {"login-crash", "login-garbage", "login-string", "login-huge"}) {
        EXPECT_EQ(check(scenario, Seconds(30)), std::nullopt) << scenario;
    }
    for (const char* scenario : {"login-hang", "login-deaf"}) {
        EXPECT_EQ(check(scenario, Seconds(0.3)), std::nullopt) << scenario;
    }
    EXPECT_EQ(claudeLogin(sandbox.machine(), "/nowhere/claude"), ClaudeLogin{});
}

} // namespace
} // namespace vellmark::tests
