#include "cli/CommandTest.h"

#include <nlohmann/json.hpp>

namespace vellmark::tests {
namespace {

using SetupCommand = CommandTest;

TEST_F(SetupCommand, WithoutATerminalIsATableAndItsStatus) {
    ProgramResult result = run({"setup"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_THAT(result.output, AllOf(HasSubstr("Ready"), Not(HasSubstr("?"))));

    sandbox.uninstall("agy");
    sandbox.play("claude", "logged-out");
    result = run({"setup"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.output, AllOf(HasSubstr("Not installed"), HasSubstr("Not logged in")));
    EXPECT_EQ(run({"setup", "codex"}).status, 0);
    const auto list = nlohmann::json::parse(run({"setup", "--json"}).output);
    ASSERT_EQ(list.size(), 3u);
    EXPECT_EQ(list[1].at("status"), "notLoggedIn");
    EXPECT_EQ(list[2].at("status"), "missing");
    EXPECT_FALSE(list[2].contains("toolPath"));

    sandbox.play("claude", "login-crash"); // cannot be verified, which is no reason to complain
    EXPECT_EQ(run({"setup", "claude"}).status, 0);
}

TEST_F(SetupCommand, LogsInAndReadsTheAgentAfterwards) {
    if (!fs::exists("/bin/zsh")) {
        GTEST_SKIP() << "/bin/zsh is not installed";
    }
    sandbox.play("codex", "logged-out");
    ProgramRun setup(setting({"setup", "codex"}, 100));
    ASSERT_TRUE(setup.shows("What would you like to do?"));
    setup.type("7\n");
    ASSERT_TRUE(setup.shows("\"7\" is not one of the choices."));
    ASSERT_TRUE(setup.shows("What would you like to do?"));
    setup.type("1\n");
    ASSERT_TRUE(setup.shows("All agents are set up."));
    const ProgramResult result = setup.wait();
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.output,
                AllOf(HasSubstr("codex login"), HasSubstr("Done."), HasSubstr("78% left")));
    expectNothingLeft();
}

// Ctrl-C belongs to the script while it runs: the program goes on and asks again.
TEST_F(SetupCommand, CtrlCEndsTheScriptAndNotTheProgram) {
    if (!fs::exists("/bin/zsh")) {
        GTEST_SKIP() << "/bin/zsh is not installed";
    }
    sandbox.installScript("codex", R"(case "$*" in
        'login --help') exit 0;;
        login) echo LOGIN-RUNS; exec sleep 100;;
        *) exit 1;;
    esac)");
    ProgramRun setup(setting({"setup", "codex"}, 100));
    ASSERT_TRUE(setup.shows("What would you like to do?"));
    setup.type("1\n");
    ASSERT_TRUE(setup.shows("LOGIN-RUNS"));
    setup.type("\x03");
    ASSERT_TRUE(setup.shows("What would you like to do?"));
    setup.type("\n");
    EXPECT_EQ(setup.wait().status, 0);
    expectNothingLeft();
}

TEST_F(SetupCommand, ScriptsArePrintedAsTheyWouldRun) {
    EXPECT_THAT(run({"setup-script", "install", "codex"}).output,
                AllOf(StartsWith("#!/bin/zsh\n"), HasSubstr("curl -fsSL 'https://")));
    EXPECT_THAT(run({"setup-script", "install", "codex", "--alternative"}).output,
                HasSubstr("\nbrew install --cask codex\nrc=$?\n"));
    EXPECT_THAT(run({"setup-script", "login", "claude", "--tool-path", "/a b/it's"}).output,
                AllOf(HasSubstr("\nTOOL='/a b/it'\\''s'\n"), HasSubstr("'auth' 'login' '--help'")));
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"setup-script", "remove", "codex"},
          {"setup-script", "login", "codex", "--alternative"}}) {
        const ProgramResult result = run(arguments);
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.output, "");
        EXPECT_THAT(result.errors, HasSubstr("--help"));
    }
}

} // namespace
} // namespace vellmark::tests
