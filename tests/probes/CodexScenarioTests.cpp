// Codex's probe from end to end: simulated server, real pipes.

#include "AgentScenario.h"
#include "probes/codex/CodexUsageProvider.h"

namespace vellmark::tests {
namespace {

using Kind = UsageProviderError::Kind;

class CodexScenario : public ScenarioTest {
protected:
    FetchOutcome fetch(Seconds limit = Seconds(60)) {
        CodexUsageProvider provider(sandbox.machine(), limit);
        return outcomeOf(provider);
    }
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
        reads("normal", bothWindows), reads("slow\ndelay=300", bothWindows),
        reads("split", bothWindows), reads("huge", bothWindows), reads("weekly-only", {"weekly"}),
        fails("logged-out", UsageProviderError::timeout("Codex"), Seconds(0.8)),
        fails("error-reply", UsageProviderError::timeout("Codex"), Seconds(0.8)),
        fails("hang", UsageProviderError::timeout("Codex"), Seconds(0.5)),
        fails("deaf", UsageProviderError::timeout("Codex"), Seconds(0.5)),
        fails("error-exit", UsageProviderError::codexReadFailed("not signed in\n")),
        fails("exits",
              UsageProviderError::codexReadFailed("Error: cannot load the configuration file\n")),
        fails("closes-output", UsageProviderError::codexReadFailed("output closed\n")),
        fails("dies", UsageProviderError::codexReadFailed("connection reset\n")),
        fails("garbage", UsageProviderError::codexReadFailed("thread 'main' panicked\n")),
        fails("crash", UsageProviderError::codexReadFailed("")),
        fails("empty", UsageProviderError::codexReadFailed("")),
        fails("no-rate-limits", Kind::codexNoQuotas), fails("no-windows", Kind::codexNoWindows)),
    scenarioTestName);

TEST_F(CodexScenario, readsAccountPlanAndCreditsWhereThereAre) {
    sandbox.play("codex", "credits");
    const auto reading = std::get<AgentUsageSnapshot>(fetch());
    EXPECT_EQ(reading.accountLabel, "name@example.org");
    EXPECT_EQ(reading.plan, "Plus");
    EXPECT_EQ(reading.credit, CreditInfo::available());

    sandbox.play("codex", "no-email");
    const auto bare = std::get<AgentUsageSnapshot>(fetch());
    EXPECT_EQ(bare.accountLabel, std::nullopt);
    EXPECT_EQ(bare.credit, std::nullopt);
}

TEST_F(CodexScenario, reportsACLIThatIsMissingOrNoProgram) {
    sandbox.installNoProgram("codex");
    expectFailure(fetch(), UsageProviderError::launchFailed("Codex", "Exec format error"));
    sandbox.uninstall("codex");
    expectFailure(fetch(), UsageProviderError::executableMissing("Codex CLI"));
}

} // namespace
} // namespace vellmark::tests
