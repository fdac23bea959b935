#include "cli/ProgramRun.h"
#include "model/UsageJSON.h"
#include "support/Matchers.h"
#include "support/ProjectDirectories.h"

#include <nlohmann/json.hpp>

namespace vellmark::tests {
namespace {

constexpr const char* claudeCapture = "Current session\r\n\x1b[2K██ 41% used\r\n"
                                      "Current week (all models)\r\n12% used\r\n";

AgentUsageSnapshot snapshotIn(const ProgramResult& result) {
    AgentUsageSnapshot snapshot;
    fromJSON(JSON::parse(result.output), snapshot);
    return snapshot;
}

ProgramResult inspect(std::vector<std::string> arguments, const std::string& input) {
    arguments.insert(arguments.begin(), "inspect");
    arguments.insert(arguments.end(), {"--now", "1763000000.5"});
    return ProgramRun::of({.arguments = std::move(arguments), .input = input});
}

TEST(Inspect, PrintsTheSnapshotOfASavedRun) {
    const ProgramResult codex =
        inspect({"codex"}, contentOf(sourceFile("tests/probes/codex/data/plus.jsonl")));
    EXPECT_EQ(codex.status, 0) << codex.errors;
    const AgentUsageSnapshot snapshot = snapshotIn(codex);
    EXPECT_EQ(snapshot.accountLabel, "user@example.com");
    ASSERT_EQ(snapshot.windows.size(), 2u);
    EXPECT_EQ(snapshot.windows.front().usedPercent, 42);
    EXPECT_EQ(snapshot.windows.front().resetsAt, instantFromUnixSeconds(1795324033));
    EXPECT_EQ(snapshot.updatedAt, instantFromUnixSeconds(1763000000.5));

    const AgentUsageSnapshot claude = snapshotIn(inspect({"claude", "-"}, claudeCapture));
    ASSERT_EQ(claude.windows.size(), 2u);
    EXPECT_EQ(claude.windows.back().usedPercent, 12);

    // A screen that the CLI went over with the cursor, and that says how old its figures are.
    const std::string recording = sourceFile("tests/probes/claude/data/screen-429-unprobed.raw");
    const ProgramResult old = inspect({"claude", recording, "--exit-status", "20"}, "");
    EXPECT_EQ(old.status, 1) << "the figures are not the service's of now";
    EXPECT_NE(old.errors.find("Showing last-known usage as of 1m ago"), std::string::npos);
    EXPECT_EQ(snapshotIn(old).updatedAt, instantFromUnixSeconds(1763000000.5 - 60));
}

TEST(Inspect, TellsFailuresAsTheProbeWould) {
    using Kind = UsageProviderError::Kind;
    const auto failure = [](std::vector<std::string> arguments, const char* input) {
        const ProgramResult result = inspect(std::move(arguments), input);
        EXPECT_EQ(result.status, 1);
        EXPECT_NE(result.errors, "");
        return snapshotIn(result).error.value_or(UsageProviderError::other("none")).kind();
    };
    EXPECT_EQ(failure({"codex"}, ""), Kind::codexReadFailed);
    EXPECT_EQ(failure({"claude", "--exit-status", "128"}, claudeCapture), Kind::claudeNotLoggedIn);
    EXPECT_EQ(failure({"claude", "--timed-out"}, ""), Kind::timeout);
    EXPECT_EQ(failure({"antigravity", "--exit-status=-1"}, "Oh no"), Kind::antigravityReadFailed);
}

TEST(Inspect, NamesTheInputThatCannotBeRead) {
    TemporaryDirectory directory;
    const std::string missing = (directory / "missing").string();
    const std::pair<ProgramRun::Setting, const char*> cases[] = {
        {{.arguments = {"inspect", "codex", missing}}, "missing"},
        {{.arguments = {"inspect", "codex", directory.path().string()}}, "Is a directory"},
        {{.arguments = {"inspect", "antigravity", "--log", missing}}, "missing"},
        {{.arguments = {"inspect", "codex", "/dev/zero"}}, "too large"},
        {{.arguments = {"inspect", "codex"}, .closed = {0}}, "standard input"},
        // The system's reasons, in the user's language.
        {{.arguments = {"--language=de", "inspect", "codex", "/nowhere"}}, "nicht vorhanden"},
        {{.arguments = {"--language=de", "inspect", "codex", "/"}}, "Das ist ein Verzeichnis"},
    };
    for (const auto& [setting, name] : cases) {
        const ProgramResult result = ProgramRun::of(setting);
        EXPECT_EQ(result.status, 1) << name;
        EXPECT_EQ(result.output, "") << name;
        EXPECT_THAT(result.errors, HasSubstr(name));
    }
}

} // namespace
} // namespace vellmark::tests
