#include "cli/ProgramRun.h"
#include "support/AgentSandbox.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <string>
#include <vector>

namespace vellmark::tests {
namespace {

using nlohmann::json;
using testing::HasSubstr;

// 2026-11-20 12:00:00 UTC, and the same since 2001.
constexpr const char* now = "2026-11-20T12:00:00Z";
constexpr double nowInFile = 816'868'800;

json window(const char* id, double used, double minutes, double secondsToReset) {
    return {{"id", id},
            {"usedPercent", used},
            {"windowDurationMinutes", minutes},
            {"resetsAt", nowInFile + secondsToReset}};
}

json snapshot(const char* id, std::vector<json> windows) {
    return {{"id", id},
            {"windows", std::move(windows)},
            {"balances", json::array()},
            {"notes", json::array()},
            {"source", "live"},
            {"updatedAt", nowInFile}};
}

class StatusCommand : public testing::Test {
protected:
    ProgramResult run(std::vector<std::string> arguments, std::optional<std::string> input = {}) {
        const std::string directory = sandbox.machine().home.parent_path().string();
        arguments.insert(arguments.begin(), {"--sandbox", directory, "status"});
        return ProgramRun::of({.arguments = std::move(arguments), .input = std::move(input)});
    }
    json document(const json& snapshots) {
        const auto result = run({"--json", "--snapshots", "-", "--now", now}, snapshots.dump());
        EXPECT_EQ(result.status, 0) << result.errors;
        return json::parse(result.output);
    }
    AgentSandbox sandbox;
};

TEST_F(StatusCommand, gradesSnapshotsFromAFile) {
    const json told = document(
        {snapshot("codex", {window("session", 10, 300, 9'000)}),
         snapshot("claude", {window("session", 60, 300, 9'000), window("weekly", 30, 10'080, 1e5)}),
         snapshot("antigravity", json::array())});
    EXPECT_EQ(told["health"], "attention");
    EXPECT_EQ(told["glyph"], json({{"usedPercent", 60.0},
                                   {"elapsedPercent", 50.0},
                                   {"providerID", "claude"},
                                   {"windowID", "session"}}));
    EXPECT_EQ(told["agents"], json({{{"id", "codex"}, {"health", "healthy"}},
                                    {{"id", "claude"}, {"health", "attention"}},
                                    {{"id", "antigravity"}, {"health", "unavailable"}}}));
    EXPECT_EQ(told["tooltip"], "Vellmark: Claude Code, Session, 60% used, 50% of the time elapsed");
}

TEST_F(StatusCommand, leavesOutWhatIsNotThere) {
    const json none = document(json::array());
    EXPECT_EQ(none["health"], "unavailable");
    EXPECT_EQ(none["glyph"], json::object());
    EXPECT_EQ(none["agents"], json::array());

    json withoutTime = snapshot("codex", {json{{"id", "session"}, {"usedPercent", 97.0}}});
    const json timeless = document(json::array({withoutTime}));
    EXPECT_EQ(timeless["health"], "critical");
    EXPECT_FALSE(timeless["glyph"].contains("elapsedPercent"));
}

TEST_F(StatusCommand, refusesWhatIsNoListOfSnapshots) {
    const json codex = snapshot("codex", {json{{"id", "session"}, {"usedPercent", 97.0}}});
    const std::string twice = json::array({codex, codex}).dump();
    for (const std::string& text :
         {std::string(), std::string("{}"), std::string("[1]"), std::string(R"([{"id":"codex"}])"),
          std::string("nonsense"), twice}) {
        const auto result = run({"--snapshots", "-", "--json"}, text);
        EXPECT_EQ(result.status, 1) << text;
        EXPECT_EQ(result.output, "");
        EXPECT_THAT(result.errors, HasSubstr("vellmark: ")) << text;
    }
    EXPECT_EQ(run({"--snapshots", "/nowhere/at-all"}).status, 1);
    EXPECT_EQ(run({"--now", "tomorrow"}).status, 2);
}

TEST_F(StatusCommand, remembersTheLastReadings) {
    const auto before = run({"--cached"});
    EXPECT_EQ(before.status, 0);
    EXPECT_EQ(std::ranges::count(before.output, '\n'), 1);

    const auto fresh = run({});
    EXPECT_EQ(fresh.status, 0) << fresh.errors;
    EXPECT_THAT(fresh.output, HasSubstr("% left"));
    for (const char* agent : {"claude", "codex", "agy"}) {
        sandbox.uninstall(agent);
    }
    const auto cached = run({"--cached"});
    EXPECT_THAT(cached.output, HasSubstr("% left")) << "nothing is started for it";
    const json told = json::parse(run({"--cached", "--json"}).output);
    EXPECT_EQ(told["agents"].size(), 3u);
    EXPECT_TRUE(told["glyph"].contains("usedPercent"));
}

} // namespace
} // namespace vellmark::tests
