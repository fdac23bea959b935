#include "cli/CommandTest.h"
#include "model/UsageJSON.h"
#include "presentation/AgentNames.h"
#include "support/ProjectDirectories.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

namespace vellmark::tests {
namespace {

using nlohmann::json;

class StatusCommand : public CommandTest {
protected:
    ProgramResult status(std::vector<std::string> arguments,
                         std::optional<std::string> input = {}) {
        arguments.insert(arguments.begin(), "status");
        return run(std::move(arguments), std::move(input));
    }
};

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

TEST_F(StatusCommand, TellsTheHealthByItsExitStatus) {
    const auto statusOf = [&](double used, std::vector<std::string> more) {
        std::vector<std::string> arguments{"--snapshots", "-", "--now", "2025-11-20T13:48:00Z"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return status(arguments,
                      snapshotsDocument({live(codex, {window("session", used, 300, 150)})}))
            .status;
    };
    EXPECT_EQ(statusOf(97, {}), 0);
    EXPECT_EQ(statusOf(10, {"--exit-status"}), 0);
    EXPECT_EQ(statusOf(60, {"--exit-status", "--format", "waybar"}), 10);
    EXPECT_EQ(statusOf(97, {"--exit-status", "--format", "{left}"}), 11);
    EXPECT_EQ(statusOf(97, {"--exit-status", "--agent", "claude"}), 12);
    EXPECT_EQ(statusOf(97, {"--format", "i3blocks"}), 33);
    EXPECT_EQ(statusOf(60, {"--format", "i3blocks"}), 0);
    EXPECT_EQ(statusOf(97, {"--format", "i3blocks", "--exit-status"}), 2);
}

/// Lines for programs that go on reading.
class StatusWatch : public StatusCommand {
protected:
    void read(double used, double minutesAgo = 0) {
        AgentUsageSnapshot reading = live(claude, {});
        reading.updatedAt = ReferenceClock::now() - Seconds(minutesAgo * 60);
        reading.windows = {{.id = "session",
                            .usedPercent = used,
                            .windowDurationMinutes = 300,
                            .resetsAt = reading.updatedAt + Seconds(2.5 * 3600 + 30)}};
        // As the store does it: the file is replaced.
        writeFile(support / "new", snapshotsDocument({reading}));
        fs::rename(support / "new", support / "last-snapshots.json");
        writeFile(support / "activity.log", "somebody has just read\n");
    }
    ProgramRun::Setting watching(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "watch");
        return setting(std::move(arguments), 200);
    }
};

TEST_F(StatusWatch, FollowsTheReadingsOfOthers) {
    read(60);
    ProgramRun watch(watching({"--format", "i3bar", "--agent", "claude"}));
    EXPECT_TRUE(watch.shows("{\"version\":1}"));
    EXPECT_TRUE(watch.shows("[\r\n[{\"name\""));
    EXPECT_TRUE(watch.shows("Claude 40% left"));
    read(60); // the same figures: nothing to write
    read(70);
    EXPECT_TRUE(watch.shows("Claude 30% left"));
    setPreferences(R"({"FirstFigure":"used"})");
    EXPECT_TRUE(watch.shows("Claude 70% used"));
    setPreferences(R"({"AppLanguage":"it"})");
    EXPECT_TRUE(watch.shows("Claude 30% residuo"));
    ::kill(watch.pid(), SIGTERM);
    const auto result = watch.wait();
    EXPECT_EQ(result.status, 128 + SIGTERM);
    const char* once = "Claude 40% left ↻ 2 h 30 min";
    EXPECT_EQ(result.output.find(once), result.output.rfind(once));
    // Who follows starts no agent.
    expectNothingLeft();
    EXPECT_EQ(contentOf(support / "activity.log"), "somebody has just read\n");
}

/// A bar that has gone leaves nobody behind, and where nobody reads the agents, this does.
TEST_F(StatusWatch, ReadsByItselfAndEndsWithItsReader) {
    read(60, 30);
    fs::remove(support / "activity.log");
    const std::string program = builtProgram("vellmark");
    const std::string directory = sandbox.machine().home.parent_path().string();
    const std::string command = "'" + program + "' --sandbox '" + directory +
                                "' watch --format '{agent} {age}' --interval 5 | head -n 2";
    std::FILE* const pipe = ::popen(command.c_str(), "r");
    ASSERT_NE(pipe, nullptr);
    std::string told;
    for (int character = 0; (character = std::fgetc(pipe)) != EOF;) {
        told += static_cast<char>(character);
    }
    // The shell waits for both, so it has ended.
    EXPECT_EQ(::pclose(pipe), 0);
    EXPECT_THAT(told, StartsWith("Claude Code 30 min old\n"));
    EXPECT_EQ(std::ranges::count(told, '\n'), 2) << told;
    expectNothingLeft();
}

} // namespace
} // namespace vellmark::tests
