#include "cli/CommandTest.h"

#include <nlohmann/json.hpp>

namespace vellmark::tests {
namespace {

using SettingsCommand = CommandTest;

TEST_F(SettingsCommand, ListsTellsAndChanges) {
    EXPECT_EQ(run({"settings", "first-figure"}).output, "left\n");
    const ProgramResult changed = run({"settings", "first-figure", "used"});
    EXPECT_EQ(changed.status, 0) << changed.errors;
    const auto list = nlohmann::json::parse(run({"settings", "--json"}).output);
    ASSERT_GT(list.size(), 10U);
    const auto one = nlohmann::json::parse(run({"settings", "first-figure", "--json"}).output);
    EXPECT_EQ(one, nlohmann::json::parse(R"({"key":"first-figure","value":"used",
        "default":"left","allowed":["left","used"]})"));
    EXPECT_THAT(run({"settings"}).output, HasSubstr("claude-path"));

    EXPECT_EQ(run({"settings", "--reset"}).status, 0);
    EXPECT_EQ(run({"settings", "first-figure"}).output, "left\n");
}

TEST_F(SettingsCommand, RefusalsNameWhatIsAllowed) {
    const ProgramResult value = run({"settings", "interval", "7"});
    EXPECT_EQ(value.status, 2);
    EXPECT_THAT(value.errors, HasSubstr("5, 10, 30"));
    const ProgramResult near = run({"settings", "first-figur"});
    EXPECT_EQ(near.status, 2);
    EXPECT_THAT(near.errors, HasSubstr("first-figure"));
    EXPECT_THAT(run({"settings", "xyzzy"}).errors, HasSubstr("agent-order"));
    EXPECT_EQ(run({"settings", "launch-at-login", "on"}).status, 2) << "no sandbox touches that";
    EXPECT_EQ(run({"settings", "interval", "5", "--reset"}).status, 2);
    EXPECT_FALSE(fs::exists(sandbox.machine().configuration / "Vellmark"));
    EXPECT_FALSE(fs::exists(sandbox.machine().configuration / "autostart"));
}

TEST_F(SettingsCommand, AgentsAreSwitchedAndPutInOrder) {
    EXPECT_EQ(run({"agents", "disable", "claude", "codex"}).status, 0);
    EXPECT_EQ(run({"settings", "agents"}).output, "antigravity\n");
    EXPECT_EQ(run({"agents", "enable", "claude"}).status, 0);
    const ProgramResult ordered = run({"agents", "order", "claude", "--json"});
    EXPECT_EQ(ordered.status, 0) << ordered.errors;
    const auto list = nlohmann::json::parse(ordered.output);
    EXPECT_EQ(list[0].at("id"), "claude");
    EXPECT_EQ(list[1].at("enabled"), false);
    EXPECT_EQ(run({"agents", "order"}).status, 2);
    EXPECT_EQ(run({"agents", "disable", "nobody"}).status, 2);
    EXPECT_THAT(run({"agents", "remove", "claude"}).errors, HasSubstr("disable"));
}

TEST_F(SettingsCommand, HoldForTheOtherCommands) {
    setPreferences(R"({"FirstFigure":"used","DisabledProviders":["codex","antigravity"]})");
    EXPECT_THAT(run({"usage"}).output, HasSubstr("% used"));
    EXPECT_THAT(run({"status", "--cached"}).output, HasSubstr("% used"));
    setPreferences(R"({"ClaudePath":"/nowhere/claude"})");
    EXPECT_EQ(run({"usage", "--agent", "claude"}).status, 1);
}

using AgentsCommand = CommandTest;

TEST_F(AgentsCommand, TellsWhatIsKnownAndLeavesOutWhatIsNot) {
    sandbox.uninstall("agy");
    sandbox.play("claude", "logged-out");
    sandbox.play("codex", "exits");
    setPreferences(R"({"DisabledProviders":["claude"]})");
    const ProgramResult result = run({"agents", "--json"});
    EXPECT_EQ(result.status, 0) << result.errors;
    const auto list = nlohmann::json::parse(result.output);
    ASSERT_EQ(list.size(), 3u);
    EXPECT_EQ(list[0].at("id"), "codex");
    EXPECT_EQ(list[0].at("enabled"), true);
    EXPECT_EQ(list[0].at("toolPath"), (sandbox.machine().home / ".local/bin/codex").string());
    EXPECT_THAT(list[0].at("toolVersion").get<std::string>(), HasSubstr("codex-cli"));
    EXPECT_FALSE(list[0].contains("loggedIn"));
    EXPECT_EQ(list[1].at("name"), "Claude Code");
    EXPECT_EQ(list[1].at("enabled"), false);
    EXPECT_EQ(list[1].at("loggedIn"), false);
    EXPECT_EQ(list[2].size(), 3u) << list[2];
}

} // namespace
} // namespace vellmark::tests
