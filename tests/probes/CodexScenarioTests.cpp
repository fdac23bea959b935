// Codex's probe from end to end: simulated server, real pipes.

#include "AgentScenario.h"
#include "probes/codex/CodexUsageProvider.h"

#include <chrono>
#include <fstream>

namespace vellmark::tests {
namespace {

using Kind = UsageProviderError::Kind;

class CodexScenario : public ScenarioTest {
protected:
    // What comes is waited for until it is there, however slow the machine; what does not come is
    // given up at once.
    static constexpr Seconds endless{60};
    static constexpr Seconds brief{0.05};

    FetchOutcome fetch(Seconds limit = endless,
                       CodexPatience patience = {.account = endless, .refusal = brief}) {
        CodexUsageProvider provider(sandbox.machine(), limit, patience);
        return outcomeOf(provider);
    }

    /// As `fetch`, which must not take as long as what it may not wait for.
    FetchOutcome fetchSoon(CodexPatience patience) {
        const auto start = std::chrono::steady_clock::now();
        FetchOutcome outcome = fetch(endless, patience);
        EXPECT_LT(Seconds(std::chrono::steady_clock::now() - start), endless / 2);
        return outcome;
    }
};

class CodexOutcomes : public CodexScenario, public testing::WithParamInterface<AgentScenario> {};

TEST_P(CodexOutcomes, AreTheReadingOrItsReason) {
    sandbox.play("codex", GetParam().scenario);
    expectOutcome(fetch(GetParam().limit), GetParam());
}

const std::vector<std::string> bothWindows = {"session", "weekly"};

INSTANTIATE_TEST_SUITE_P(
    , CodexOutcomes,
    testing::Values(
        reads("normal", bothWindows), reads("slow\ndelay=300", bothWindows),
        reads("split", bothWindows), reads("huge", bothWindows), reads("weekly-only", {"session"}),
        reads("further-limit", {"session", "weekly", "limit:gpt-5.3-codex-spark|primary",
                                "limit:gpt-5.3-codex-spark|secondary"}),
        reads("individual-limit", {"session", "weekly", "individual"}),
        fails("logged-out", Kind::codexNotLoggedIn), fails("error-exit", Kind::codexNotLoggedIn),
        fails("api-key", Kind::codexAPIKey),
        fails("error-reply",
              UsageProviderError::codexReadFailed(
                  "failed to fetch codex rate limits: GET "
                  "https://codex.example.org/usage failed: 429 Too Many Requests; "
                  "content-type=application/json; body={\"detail\": \"slow down\"}")),
        fails("hang", UsageProviderError::timeout("Codex"), Seconds(0.5)),
        fails("deaf", UsageProviderError::timeout("Codex"), Seconds(0.5)),
        fails("exits",
              UsageProviderError::codexReadFailed("Error: cannot load the configuration file\n")),
        fails("closes-output", UsageProviderError::codexReadFailed("output closed\n")),
        fails("dies", UsageProviderError::codexReadFailed("connection reset\n")),
        fails("garbage", UsageProviderError::codexReadFailed("thread 'main' panicked\n")),
        fails("crash", UsageProviderError::codexReadFailed("")),
        fails("empty", UsageProviderError::codexReadFailed("")),
        fails("no-rate-limits", Kind::codexNoQuotas), fails("no-windows", Kind::codexNoWindows)),
    scenarioTestName);

TEST_F(CodexScenario, WaitsForAnAccountThatComesAfterTheLimits) {
    sandbox.play("codex", "account-last");
    const auto late = std::get<AgentUsageSnapshot>(fetchSoon({.account = endless}));
    EXPECT_EQ(late.accountLabel, "name@example.org");

    sandbox.play("codex", "account-error");
    EXPECT_EQ(std::get<AgentUsageSnapshot>(fetchSoon({.account = endless})).accountLabel,
              std::nullopt);

    sandbox.play("codex", "account-never");
    const auto never = std::get<AgentUsageSnapshot>(fetchSoon({.account = brief}));
    EXPECT_EQ(never.accountLabel, std::nullopt);
    EXPECT_EQ(never.windows.size(), 2U);
}

TEST_F(CodexScenario, WaitsForLimitsThatComeAfterARefusal) {
    sandbox.play("codex", "error-then-answer");
    const auto late = fetchSoon({.refusal = endless});
    EXPECT_EQ(std::get<AgentUsageSnapshot>(late).windows.size(), 2U);

    sandbox.play("codex", "error-reply");
    EXPECT_EQ(failureOf(fetchSoon({.refusal = brief})), Kind::codexReadFailed);
    // The end of the output is waited for no longer than that either.
    sandbox.play("codex", "error-exit");
    EXPECT_EQ(failureOf(fetchSoon({.refusal = endless})), Kind::codexNotLoggedIn);
}

TEST_F(CodexScenario, RunsInADirectoryOfItsOwn) {
    sandbox.installScript("codex", R"sh(
pwd > "$HOME/place"
ls -ld . | cut -c1-10 >> "$HOME/place"
echo '{"id":2,"result":{}}'
echo '{"id":3,"result":{"rateLimits":{"primary":{"usedPercent":1}}}}')sh");
    const auto workspace = sandbox.machine().supportDirectory() / "CodexWorkspace";
    EXPECT_EQ(std::get<AgentUsageSnapshot>(fetch()).windows.size(), 1U);
    EXPECT_EQ(contentOf(sandbox.machine().home / "place"),
              fs::canonical(workspace).string() + "\ndrwx------\n");

    fs::remove_all(workspace);
    std::ofstream(workspace) << "in the way";
    const auto error = std::get<UsageProviderError>(fetch());
    EXPECT_EQ(error.kind(), Kind::launchFailed);
    EXPECT_NE(error.texts().at(1).find("CodexWorkspace: "), std::string::npos);
}

TEST_F(CodexScenario, ReportsACLIThatIsMissingOrNoProgram) {
    sandbox.installNoProgram("codex");
    expectFailure(fetch(), UsageProviderError::launchFailed("Codex", "Exec format error"));
    sandbox.uninstall("codex");
    expectFailure(fetch(), UsageProviderError::executableMissing("Codex CLI"));
}

} // namespace
} // namespace vellmark::tests
