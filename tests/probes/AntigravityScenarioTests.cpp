// Antigravity's probe from end to end: simulated CLI, real files.

#include "AgentScenario.h"
#include "probes/antigravity/AntigravityUsageProvider.h"

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

TEST_P(AntigravityOutcomes, areTheReadingOrItsReason) {
    sandbox.play("agy", GetParam().scenario);
    expectOutcome(fetch(GetParam().limit), GetParam());
}

const std::vector<std::string> allWindows = {"pool:Gemini Models|5h", "pool:Gemini Models|weekly",
                                             "pool:Claude and GPT models|weekly"};

INSTANTIATE_TEST_SUITE_P(
    , AntigravityOutcomes,
    testing::Values(reads("normal", allWindows), reads("slow\ndelay=300", allWindows),
                    reads("split", allWindows), reads("huge", allWindows),
                    reads("text", allWindows), reads("response", allWindows),
                    fails("logged-out", Kind::antigravityNotLoggedIn),
                    fails("login-hang", Kind::antigravityNotLoggedIn, Seconds(3)),
                    fails("not-eligible", Kind::antigravityIneligible),
                    fails("hang", UsageProviderError::timeout("Antigravity"), Seconds(0.5)),
                    fails("deaf", UsageProviderError::timeout("Antigravity"), Seconds(0.5)),
                    fails("empty", Kind::antigravityNoQuotas),
                    fails("empty-groups", Kind::antigravityNoQuotas),
                    fails("garbage", Kind::antigravityNoQuotas),
                    fails("crash", UsageProviderError::antigravityReadFailed("")),
                    fails("fails", UsageProviderError::antigravityReadFailed(
                                       "Error: the language server did not start\n"))),
    scenarioTestName);

TEST_F(AntigravityScenario, readsTimesAndTheAccountOfTheLog) {
    const Instant before = ReferenceClock::now();
    const auto reading = std::get<AgentUsageSnapshot>(fetch());
    ASSERT_TRUE(reading.windows.at(0).resetsAt);
    EXPECT_NEAR((*reading.windows[0].resetsAt - before).count(), 86 * 60, 90);
    EXPECT_EQ(reading.accountLabel, "name@example.org");

    sandbox.play("agy", "no-log");
    EXPECT_EQ(std::get<AgentUsageSnapshot>(fetch()).accountLabel, std::nullopt);
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

} // namespace
} // namespace vellmark::tests
