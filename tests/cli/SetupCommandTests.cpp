#include "cli/ProgramRun.h"
#include "support/AgentSandbox.h"

#include <gmock/gmock.h>

#include <filesystem>

namespace vellmark::tests {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class SetupCommand : public testing::Test {
protected:
    ProgramRun::Setting setting(std::vector<std::string> arguments, int columns = 0) {
        const std::string directory = sandbox.machine().home.parent_path().string();
        arguments.insert(arguments.begin(), {"--sandbox", directory});
        return {.arguments = std::move(arguments), .columns = columns};
    }

    void expectNothingLeft() {
        EXPECT_THAT(sandbox.survivors(), testing::IsEmpty());
        EXPECT_FALSE(sandbox.leftTemporaryFiles());
    }

    AgentSandbox sandbox;
};

TEST_F(SetupCommand, WithoutATerminalIsATableAndItsStatus) {
    ProgramResult result = ProgramRun::of(setting({"setup"}));
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_THAT(result.output, AllOf(HasSubstr("Ready"), Not(HasSubstr("?"))));

    sandbox.uninstall("agy");
    sandbox.play("claude", "logged-out");
    result = ProgramRun::of(setting({"setup"}));
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.output, AllOf(HasSubstr("Not installed"), HasSubstr("Not logged in")));
    EXPECT_EQ(ProgramRun::of(setting({"setup", "codex"})).status, 0);

    sandbox.play("claude", "login-crash"); // cannot be verified, which is no reason to complain
    EXPECT_EQ(ProgramRun::of(setting({"setup", "claude"})).status, 0);
}

TEST_F(SetupCommand, LogsInAndReadsTheAgentAfterwards) {
    if (!std::filesystem::exists("/bin/zsh"))
        GTEST_SKIP() << "/bin/zsh is not installed";
    sandbox.play("codex", "logged-out");
    ProgramRun run(setting({"setup", "codex"}, 100));
    ASSERT_TRUE(run.shows("What would you like to do?"));
    run.type("7\n");
    ASSERT_TRUE(run.shows("\"7\" is not one of the choices."));
    ASSERT_TRUE(run.shows("What would you like to do?"));
    run.type("1\n");
    ASSERT_TRUE(run.shows("All agents are set up."));
    const ProgramResult result = run.wait();
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.output,
                AllOf(HasSubstr("codex login"), HasSubstr("Done."), HasSubstr("78% left")));
    expectNothingLeft();
}

// Ctrl-C belongs to the script while it runs: the program goes on and asks again.
TEST_F(SetupCommand, CtrlCEndsTheScriptAndNotTheProgram) {
    if (!std::filesystem::exists("/bin/zsh"))
        GTEST_SKIP() << "/bin/zsh is not installed";
    sandbox.installScript("codex", R"(case "$*" in
        'login --help') exit 0;;
        login) echo LOGIN-RUNS; exec sleep 100;;
        *) exit 1;;
    esac)");
    ProgramRun run(setting({"setup", "codex"}, 100));
    ASSERT_TRUE(run.shows("What would you like to do?"));
    run.type("1\n");
    ASSERT_TRUE(run.shows("LOGIN-RUNS"));
    run.type("\x03");
    ASSERT_TRUE(run.shows("What would you like to do?"));
    run.type("\n");
    EXPECT_EQ(run.wait().status, 0);
    expectNothingLeft();
}

TEST_F(SetupCommand, ScriptsArePrintedAsTheyWouldRun) {
    const auto printed = [&](std::vector<std::string> arguments) {
        return ProgramRun::of(setting(std::move(arguments))).output;
    };
    EXPECT_THAT(printed({"setup-script", "install", "codex"}),
                AllOf(StartsWith("#!/bin/zsh\n"), HasSubstr("curl -fsSL 'https://")));
    EXPECT_THAT(printed({"setup-script", "install", "codex", "--alternative"}),
                HasSubstr("\nbrew install --cask codex\nrc=$?\n"));
    EXPECT_THAT(printed({"setup-script", "login", "claude", "--tool-path", "/a b/it's"}),
                HasSubstr("\nTOOL='/a b/it'\\''s'\n"));
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"setup-script", "remove", "codex"},
          {"setup-script", "login", "codex", "--alternative"},
          {"setup-script", "install", "someone"},
          {"setup-script", "install"}}) {
        const ProgramResult result = ProgramRun::of(setting(arguments));
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.output, "");
        EXPECT_THAT(result.errors, HasSubstr("--help"));
    }
}

} // namespace
} // namespace vellmark::tests
