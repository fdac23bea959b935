#include "cli/CommandTest.h"
#include "model/UsageJSON.h"
#include "presentation/UsageStateMaker.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <string>
#include <vector>

namespace vellmark::tests {
namespace {

using nlohmann::json;
using testing::HasSubstr;

const auto codex = AgentProviderID::codex();
const auto claude = AgentProviderID::claude();
const auto antigravity = AgentProviderID::antigravity();

class StatusCommand : public CommandTest {
protected:
    ProgramResult status(std::vector<std::string> arguments,
                         std::optional<std::string> input = {}) {
        arguments.insert(arguments.begin(), "status");
        return run(std::move(arguments), std::move(input));
    }
    json document(const std::vector<AgentUsageSnapshot>& snapshots) {
        const auto result = status({"--json", "--snapshots", "-", "--now", "2025-11-20T13:48:00Z"},
                                   snapshotsDocument(snapshots));
        EXPECT_EQ(result.status, 0) << result.errors;
        return json::parse(result.output);
    }
};

TEST_F(StatusCommand, GradesSnapshotsFromAFile) {
    const json told = document(
        {live(codex, {window("session", 10, 300, 150)}),
         live(claude, {window("session", 60, 300, 150), window("weekly", 30, 10'080, 1'700)}),
         live(antigravity, {})});
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

TEST_F(StatusCommand, LeavesOutWhatIsNotThere) {
    const json none = document({});
    EXPECT_EQ(none["health"], "unavailable");
    EXPECT_EQ(none["glyph"], json::object());
    EXPECT_EQ(none["agents"], json::array());

    const json timeless = document({live(codex, {windowWithoutReset("session", 97)})});
    EXPECT_EQ(timeless["health"], "critical");
    EXPECT_FALSE(timeless["glyph"].contains("elapsedPercent"));
}

TEST_F(StatusCommand, RefusesWhatIsNoListOfSnapshots) {
    const std::string twice = snapshotsDocument({live(codex, {}), live(codex, {})});
    for (const std::string& text : {std::string(), std::string("{}"), std::string("[1]"),
                                    std::string(R"([{"id":"codex"}])"), twice}) {
        const auto result = status({"--snapshots", "-", "--json"}, text);
        EXPECT_EQ(result.status, 1) << text;
        EXPECT_EQ(result.output, "");
        EXPECT_THAT(result.errors, HasSubstr("vellmark: ")) << text;
    }
    EXPECT_EQ(status({"--snapshots", "/nowhere/at-all"}).status, 1);
    EXPECT_EQ(status({"--now", "tomorrow"}).status, 2);
}

TEST_F(StatusCommand, RemembersTheLastReadings) {
    const auto before = status({"--cached"});
    EXPECT_EQ(before.status, 0);
    EXPECT_EQ(std::ranges::count(before.output, '\n'), 1);

    const auto fresh = status({});
    EXPECT_EQ(fresh.status, 0) << fresh.errors;
    EXPECT_THAT(fresh.output, HasSubstr("% left"));
    for (const char* agent : {"claude", "codex", "agy"}) {
        sandbox.uninstall(agent);
    }
    const auto cached = status({"--cached"});
    EXPECT_THAT(cached.output, HasSubstr("% left")) << "nothing is started for it";
    const json told = json::parse(status({"--cached", "--json"}).output);
    EXPECT_EQ(told["agents"].size(), 3u);
    EXPECT_TRUE(told["glyph"].contains("usedPercent"));
}

} // namespace
} // namespace vellmark::tests
