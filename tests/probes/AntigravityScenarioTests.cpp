// Antigravity's probe from end to end: simulated CLI, real files.

#include "AgentScenario.h"
#include "probes/antigravity/AntigravityUsageProvider.h"
#include "support/Matchers.h"

#include <filesystem>
#include <memory>
#include <sstream>

namespace vellmark::tests {
namespace {

using Kind = UsageProviderError::Kind;

class AntigravityScenario : public ScenarioTest {
protected:
    FetchOutcome fetch(Seconds limit = Seconds(60)) {
        AntigravityUsageProvider provider(sandbox.machine(), limit, Seconds(0.2));
        return outcomeOf(provider);
    }
};

class AntigravityOutcomes : public AntigravityScenario,
                            public testing::WithParamInterface<AgentScenario> {};

TEST_P(AntigravityOutcomes, AreTheReadingOrItsReason) {
    sandbox.play("agy", GetParam().scenario);
    expectOutcome(fetch(GetParam().limit), GetParam());
}

const std::vector<std::string> allWindows = {"pool:Gemini Models|5h", "pool:Gemini Models|weekly",
                                             "pool:Claude and GPT models|weekly"};

INSTANTIATE_TEST_SUITE_P(
    , AntigravityOutcomes,
    testing::Values(
        reads("normal", allWindows), reads("slow\ndelay=300", allWindows),
        reads("split", allWindows), reads("huge", allWindows), reads("text", allWindows),
        reads("response", allWindows), reads("turn-with-data", allWindows),
        reads("not-used-yet", allWindows), reads("disabled-bucket", {allWindows[0], allWindows[1]}),
        fails("turn", UsageProviderError::antigravityReadingCosts("1.4.2")),
        fails("old-version", UsageProviderError::antigravityReadingCosts("1.1.10")),
        fails("error-line",
              UsageProviderError::antigravityReadFailed("The quota service is unavailable.")),
        fails("logged-out", Kind::antigravityNotLoggedIn),
        fails("login-hang", Kind::antigravityNotLoggedIn, Seconds(3)),
        fails("not-eligible", Kind::antigravityIneligible),
        fails("hang", UsageProviderError::timeout("Antigravity"), Seconds(0.5)),
        fails("deaf", UsageProviderError::timeout("Antigravity"), Seconds(0.5)),
        fails("empty", Kind::antigravityNoQuotas), fails("empty-groups", Kind::antigravityNoQuotas),
        fails("garbage", Kind::antigravityNoQuotas),
        fails("crash", UsageProviderError::antigravityReadFailed("")),
        fails("fails", UsageProviderError::antigravityReadFailed(
                           "Error: the language server did not start\n"))),
    scenarioTestName);

TEST_F(AntigravityScenario, ReadsTimesAndTheAccountOfTheLog) {
    const Instant before = ReferenceClock::now();
    const auto reading = std::get<AgentUsageSnapshot>(fetch());
    ASSERT_TRUE(reading.windows.at(0).resetsAt);
    EXPECT_NEAR((*reading.windows[0].resetsAt - before).count(), 86 * 60, 90);
    EXPECT_EQ(reading.accountLabel, "name@example.org");

    sandbox.play("agy", "no-log");
    EXPECT_EQ(std::get<AgentUsageSnapshot>(fetch()).accountLabel, std::nullopt);
}

TEST_F(AntigravityScenario, QuotesAnAnswerThatBreaksOff) {
    sandbox.play("agy", "dies");
    const auto error = std::get<UsageProviderError>(fetch());
    EXPECT_EQ(error.kind(), Kind::antigravityReadFailed);
    EXPECT_EQ(error.texts().at(0).size(), 120u);
}

TEST_F(AntigravityScenario, ReportsWhatKeepsItFromStarting) {
    sandbox.installNoProgram("agy");
    expectFailure(fetch(), UsageProviderError::launchFailed("Antigravity", "Exec format error"));
    sandbox.signOutOfAntigravity();
    expectFailure(fetch(), Kind::antigravityNotLoggedIn);
    sandbox.uninstall("agy");
    expectFailure(fetch(), UsageProviderError::executableMissing("Antigravity CLI"));

    AgentSandbox other;
    other.machine().temporary /= "gone";
    AntigravityUsageProvider provider(other.machine());
    expectFailure(outcomeOf(provider), UsageProviderError::antigravityReadFailed("temporary file"));
}

/// A CLI of which a test sees how it was run.
class AntigravityRuns : public AntigravityScenario {
protected:
    /// `answer` is a shell command. Each run leaves a line: its arguments and its directory.
    void installCLI(const std::string& version, const std::string& answer) {
        sandbox.installScript("agy", "echo \"$* in $(pwd -P)\" >> \"$HOME/runs\"\n"
                                     "if [ \"$1\" = --version ]; then echo '" +
                                         version + "'; exit; fi\n" + answer + "\n");
    }

    /// The first word of each run since the last call.
    std::vector<std::string> runs() {
        std::vector<std::string> words;
        std::istringstream lines(contentOf(sandbox.machine().home / "runs"));
        for (std::string line; std::getline(lines, line);) {
            words.push_back(line.substr(0, line.find(' ')));
        }
        fs::remove(sandbox.machine().home / "runs");
        return words;
    }

    FetchOutcome fetchAutomatically() {
        try {
            return provider.fetchAutomatically();
        } catch (const UsageProviderError& error) {
            return error;
        }
    }

    static constexpr const char* freeAnswer =
        R"(echo '{"num_turns":0,"command":{"data":{"groups":[)"
        R"({"name":"A","buckets":[{"window":"5h","remaining_fraction":1}]}]}}}')";
    static constexpr const char* costlyAnswer =
        R"(echo '{"num_turns":1,"response":"A  5h limit remaining  40%"}')";

    AntigravityUsageProvider provider{sandbox.machine(), Seconds(60), Seconds(0.2)};
};

using Words = std::vector<std::string>;

TEST_F(AntigravityRuns, AreNotMadeAutomaticallyByAVersionThatAsksAModel) {
    installCLI("agy 1.1.10", freeAnswer);
    EXPECT_TRUE(provider.pace().automatic) << "nothing is known yet";
    for (int round = 0; round < 2; ++round) {
        expectFailure(fetchAutomatically(), UsageProviderError::antigravityReadingCosts("1.1.10"));
    }
    EXPECT_EQ(runs(), Words{"--version"});
    EXPECT_FALSE(provider.pace().automatic);
    expectOutcome(outcomeOf(provider), reads("by hand", {"pool:A|5h"}));
    EXPECT_FALSE(provider.pace().automatic);
    EXPECT_EQ(runs(), Words{"-p"});

    installCLI("agy 1.1.11-rc.1 (stable)", freeAnswer);
    EXPECT_TRUE(provider.pace().automatic);
    for (int round = 0; round < 2; ++round) {
        expectOutcome(fetchAutomatically(), reads("update", {"pool:A|5h"}));
    }
    EXPECT_EQ(runs(), (Words{"--version", "-p", "-p"}));
    EXPECT_TRUE(provider.pace().automatic);
}

TEST_F(AntigravityRuns, EndOnceOneHasCostSomething) {
    for (const char* version : {"1.4.2", "nightly"}) {
        installCLI(version, costlyAnswer);
        const std::string told = std::string(version) == "nightly" ? "?" : version;
        const auto costs = UsageProviderError::antigravityReadingCosts(told);
        expectFailure(fetchAutomatically(), costs);
        EXPECT_FALSE(provider.pace().automatic);
        expectFailure(fetchAutomatically(), costs);
        EXPECT_EQ(runs(), (Words{"--version", "-p"})) << version;
        expectFailure(outcomeOf(provider), costs);
        EXPECT_EQ(runs(), Words{"-p"}) << version;
    }
}

TEST_F(AntigravityRuns, HappenInADirectoryOfTheirOwn) {
    installCLI("1.4.2", freeAnswer);
    expectOutcome(outcomeOf(provider), reads("by hand", {"pool:A|5h"}));
    const auto workspace = sandbox.machine().supportDirectory() / "AntigravityWorkspace";
    EXPECT_EQ(fs::status(workspace).permissions(), fs::perms::owner_all);
    EXPECT_THAT(contentOf(sandbox.machine().home / "runs"),
                EndsWith(" in " + fs::canonical(workspace).string() + "\n"));
}

TEST_F(AntigravityRuns, AreNotHeldUpByWhatStandsInTheLogsPlace) {
    const auto withLog = [](const std::string& makeLog) {
        return "for log; do :; done\n" + makeLog + "\n" + freeAnswer;
    };
    for (const char* makeLog : {"mkfifo \"$log\"", "mkdir \"$log\"", "ln -s /dev/zero \"$log\"",
                                "head -c 20000000 /dev/zero > \"$log\""}) {
        installCLI("1.4.2", withLog(makeLog));
        const FetchOutcome outcome = outcomeOf(provider);
        expectOutcome(outcome, reads(makeLog, {"pool:A|5h"}));
        EXPECT_EQ(std::get<AgentUsageSnapshot>(outcome).accountLabel, std::nullopt) << makeLog;
    }
    installCLI("1.4.2", withLog("echo 'authenticated successfully as a@b.ch' > \"$log\"\n"
                                "stat -c %a \"$(dirname \"$log\")\" > \"$HOME/mode\""));
    EXPECT_EQ(std::get<AgentUsageSnapshot>(outcomeOf(provider)).accountLabel, "a@b.ch");
    EXPECT_EQ(contentOf(sandbox.machine().home / "mode"), "700\n");
}

TEST_F(AntigravityRuns, AreStoppedWhenTheyPrintWithoutEnd) {
    installCLI("1.4.2", "exec yes");
    expectFailure(outcomeOf(provider),
                  UsageProviderError::antigravityReadFailed("too much output"));
}

TEST_F(AntigravityRuns, AreMadeWhenOnlyTheCLICanTellOfTheLogin) {
    struct Store final : CredentialStore {
        std::optional<bool> hasGenericPassword(const std::string&,
                                               const std::string&) const override {
            return std::nullopt;
        }
    };
    sandbox.signOutOfAntigravity();
    sandbox.machine().environment["GEMINI_API_KEY"] = "key";
    AntigravityUsageProvider withKey(sandbox.machine());
    expectOutcome(outcomeOf(withKey), reads("key", allWindows));
    sandbox.machine().environment.erase("GEMINI_API_KEY");
    AntigravityUsageProvider without(sandbox.machine());
    expectFailure(outcomeOf(without), Kind::antigravityNotLoggedIn);
    sandbox.machine().credentials = std::make_shared<Store>();
    AntigravityUsageProvider unasked(sandbox.machine());
    expectOutcome(outcomeOf(unasked), reads("no store", allWindows));
    sandbox.play("agy", "logged-out");
    expectFailure(outcomeOf(unasked), Kind::antigravityNotLoggedIn);
}

} // namespace
} // namespace vellmark::tests
