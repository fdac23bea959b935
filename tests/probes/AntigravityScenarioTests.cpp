// Antigravity's probe from end to end: simulated CLI, real files.

#include "AgentScenario.h"
#include "probes/antigravity/AntigravityUsageProvider.h"

namespace vellmark::tests {
namespace {

using Kind = UsageProviderError::Kind;

class AntigravityScenario : public testing::Test {
protected:
    void TearDown() override {
        EXPECT_FALSE(sandbox.leftTemporaryFiles());
        EXPECT_EQ(sandbox.survivors(), std::vector<std::string>());
    }

    FetchOutcome fetch(Seconds limit = Seconds(60)) {
        AntigravityUsageProvider provider(sandbox.machine(), limit, Seconds(0.2));
        return outcomeOf(provider);
    }

    AgentSandbox sandbox;
};

class AntigravityOutcomes : public AntigravityScenario,
                            public testing::WithParamInterface<AgentScenario> {};

TEST_P(AntigravityOutcomes, areTheReadingOrItsReason) {
    sandbox.play("agy", GetParam().scenario);
    expectOutcome(fetch(GetParam().limit), GetParam());
}

const std::vector<std::string> allWindows = {"pool:Gemini Models|5h", "pool:Gemini Models|weekly",
                                             "pool:Claude and GPT models|weekly"};

INSTANTIATE_TEST_SUITE_P(
    , AntigravityOutcomes,
    testing::Values(
        AgentScenario{"normal", {}, allWindows}, AgentScenario{"slow\ndelay=300", {}, allWindows},
        AgentScenario{"split", {}, allWindows}, AgentScenario{"huge", {}, allWindows},
        AgentScenario{"text", {}, allWindows}, AgentScenario{"response", {}, allWindows},
        AgentScenario{"logged-out", UsageProviderError(Kind::antigravityNotLoggedIn), {}},
        AgentScenario{
            "login-hang", UsageProviderError(Kind::antigravityNotLoggedIn), {}, Seconds(3)},
        AgentScenario{"not-eligible", UsageProviderError(Kind::antigravityIneligible), {}},
        AgentScenario{"hang", UsageProviderError::timeout("Antigravity"), {}, Seconds(0.5)},
        AgentScenario{"deaf", UsageProviderError::timeout("Antigravity"), {}, Seconds(0.5)},
        AgentScenario{"empty", UsageProviderError(Kind::antigravityNoQuotas), {}},
        AgentScenario{"empty-groups", UsageProviderError(Kind::antigravityNoQuotas), {}},
        AgentScenario{"garbage", UsageProviderError(Kind::antigravityNoQuotas), {}},
        AgentScenario{"crash", UsageProviderError::antigravityReadFailed(""), {}},
        AgentScenario{
            "fails",
            UsageProviderError::antigravityReadFailed("Error: the language server did not start\n"),
            {}}),
    scenarioTestName);

TEST_F(AntigravityScenario, readsFiguresAndAccount) {
    const Instant before = ReferenceClock::now();
    const FetchOutcome outcome = fetch();
    const AgentUsageSnapshot& reading = std::get<AgentUsageSnapshot>(outcome);
    ASSERT_EQ(reading.windows.size(), 3u);
    EXPECT_NEAR(reading.windows[0].usedPercent, 93, 0.5);
    EXPECT_EQ(reading.windows[0].windowDurationMinutes, 300);
    EXPECT_NEAR(reading.windows[1].usedPercent, 30, 0.5);
    EXPECT_NEAR(reading.windows[2].usedPercent, 12, 0.5);
    ASSERT_TRUE(reading.windows[0].resetsAt);
    EXPECT_NEAR((*reading.windows[0].resetsAt - before).count(), 86 * 60, 90);
    EXPECT_EQ(reading.accountLabel, "name@example.org");
}

TEST_F(AntigravityScenario, readsAnAccountWithoutLog) {
    sandbox.play("agy", "no-log");
    const FetchOutcome outcome = fetch();
    EXPECT_EQ(std::get<AgentUsageSnapshot>(outcome).accountLabel, std::nullopt);
}

TEST_F(AntigravityScenario, quotesAnAnswerThatBreaksOff) {
    sandbox.play("agy", "dies");
    const FetchOutcome outcome = fetch();
    const auto* error = std::get_if<UsageProviderError>(&outcome);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->kind(), Kind::antigravityReadFailed);
    EXPECT_EQ(error->texts().at(0).size(), 120u);
}

TEST_F(AntigravityScenario, reportsWhatKeepsItFromStarting) {
    sandbox.installNoProgram("agy");
    expectOutcome(fetch(),
                  {"", UsageProviderError::launchFailed("Antigravity", "Exec format error"), {}});
    sandbox.signOutOfAntigravity();
    expectOutcome(fetch(), {"", UsageProviderError(Kind::antigravityNotLoggedIn), {}});
    sandbox.uninstall("agy");
    expectOutcome(fetch(), {"", UsageProviderError::executableMissing("Antigravity CLI"), {}});
}

TEST_F(AntigravityScenario, reportsATemporaryDirectoryThatIsGone) {
    AgentSandbox other;
    other.machine().temporary /= "gone";
    AntigravityUsageProvider provider(other.machine());
    expectOutcome(outcomeOf(provider),
                  {"", UsageProviderError::antigravityReadFailed("temporary file"), {}});
}

} // namespace
} // namespace vellmark::tests
