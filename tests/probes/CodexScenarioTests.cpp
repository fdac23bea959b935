// Codex's probe from end to end: simulated server, real pipes.

#include "AgentScenario.h"
#include "probes/codex/CodexUsageProvider.h"

namespace vellmark::tests {
namespace {

using Kind = UsageProviderError::Kind;

class CodexScenario : public testing::Test {
protected:
    void TearDown() override {
        EXPECT_FALSE(sandbox.leftTemporaryFiles());
        EXPECT_EQ(sandbox.survivors(), std::vector<std::string>());
    }

    FetchOutcome fetch(Seconds limit = Seconds(60)) {
        CodexUsageProvider provider(sandbox.machine(), limit);
        return outcomeOf(provider);
    }

    AgentSandbox sandbox;
};

class CodexOutcomes : public CodexScenario, public testing::WithParamInterface<AgentScenario> {};

TEST_P(CodexOutcomes, areTheReadingOrItsReason) {
    sandbox.play("codex", GetParam().scenario);
    expectOutcome(fetch(GetParam().limit), GetParam());
}

const std::vector<std::string> bothWindows = {"session", "weekly"};

INSTANTIATE_TEST_SUITE_P(
    , CodexOutcomes,
    testing::Values(
        AgentScenario{"normal", {}, bothWindows}, AgentScenario{"slow\ndelay=300", {}, bothWindows},
        AgentScenario{"split", {}, bothWindows}, AgentScenario{"huge", {}, bothWindows},
        AgentScenario{"strings", {}, bothWindows}, AgentScenario{"weekly-only", {}, {"weekly"}},
        AgentScenario{"logged-out", UsageProviderError::timeout("Codex"), {}, Seconds(0.8)},
        AgentScenario{"error-reply", UsageProviderError::timeout("Codex"), {}, Seconds(0.8)},
        AgentScenario{"hang", UsageProviderError::timeout("Codex"), {}, Seconds(0.5)},
        AgentScenario{"deaf", UsageProviderError::timeout("Codex"), {}, Seconds(0.5)},
        AgentScenario{"error-exit", UsageProviderError::codexReadFailed("not signed in\n"), {}},
        AgentScenario{
            "exits",
            UsageProviderError::codexReadFailed("Error: cannot load the configuration file\n"),
            {}},
        AgentScenario{"closes-output", UsageProviderError::codexReadFailed("output closed\n"), {}},
        AgentScenario{"dies", UsageProviderError::codexReadFailed("connection reset\n"), {}},
        AgentScenario{
            "garbage", UsageProviderError::codexReadFailed("thread 'main' panicked\n"), {}},
        AgentScenario{"crash", UsageProviderError::codexReadFailed(""), {}},
        AgentScenario{"empty", UsageProviderError::codexReadFailed(""), {}},
        AgentScenario{"no-rate-limits", UsageProviderError(Kind::codexNoQuotas), {}},
        AgentScenario{"no-windows", UsageProviderError(Kind::codexNoWindows), {}}),
    scenarioTestName);

TEST_F(CodexScenario, readsFiguresAccountAndCredits) {
    sandbox.play("codex", "credits");
    const Instant before = ReferenceClock::now();
    const FetchOutcome outcome = fetch();
    const AgentUsageSnapshot& reading = std::get<AgentUsageSnapshot>(outcome);
    ASSERT_EQ(reading.windows.size(), 2u);
    EXPECT_EQ(reading.windows[0].usedPercent, 22);
    EXPECT_EQ(reading.windows[0].windowDurationMinutes, 300);
    EXPECT_EQ(reading.windows[1].usedPercent, 29);
    ASSERT_TRUE(reading.windows[1].resetsAt);
    EXPECT_NEAR((*reading.windows[1].resetsAt - before).count(), 90 * 3600, 90);
    EXPECT_EQ(reading.accountLabel, "name@example.org");
    EXPECT_EQ(reading.plan, "Plus");
    EXPECT_EQ(reading.credit, CreditInfo::available());
}

TEST_F(CodexScenario, readsAnAccountWithoutEmail) {
    sandbox.play("codex", "no-email");
    const FetchOutcome outcome = fetch();
    EXPECT_EQ(std::get<AgentUsageSnapshot>(outcome).accountLabel, std::nullopt);
    EXPECT_EQ(std::get<AgentUsageSnapshot>(outcome).credit, std::nullopt);
}

TEST_F(CodexScenario, reportsACLIThatIsMissingOrNoProgram) {
    sandbox.installNoProgram("codex");
    expectOutcome(fetch(),
                  {"", UsageProviderError::launchFailed("Codex", "Exec format error"), {}});
    sandbox.uninstall("codex");
    expectOutcome(fetch(), {"", UsageProviderError::executableMissing("Codex CLI"), {}});
}

} // namespace
} // namespace vellmark::tests
