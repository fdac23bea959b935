#include "cli/CommandTest.h"
#include "model/UsageJSON.h"
#include "support/ProjectDirectories.h"

#include <algorithm>
#include <csignal>
#include <unistd.h>

namespace vellmark::tests {
namespace {

using Kind = UsageProviderError::Kind;

/// True once the scripted session of `program` has started the agent itself.
bool hasGrandchild(pid_t program) {
    return std::ranges::any_of(directChildren(program),
                               [](pid_t child) { return !directChildren(child).empty(); });
}

class UsageCommand : public CommandTest {
protected:
    ProgramResult usage(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "usage");
        return run(std::move(arguments));
    }
};

TEST_F(UsageCommand, PrintsOneDocumentInTheOrderOfTheRegistry) {
    const ProgramResult result = usage({"--json"});
    EXPECT_EQ(result.status, 0) << result.errors;
    const auto snapshots = snapshotsFromDocument(result.output);
    ASSERT_EQ(snapshots.size(), 3u);
    EXPECT_EQ(snapshots[0].id, AgentProviderID::codex());
    EXPECT_EQ(snapshots[1].id, AgentProviderID::claude());
    EXPECT_EQ(snapshots[2].id, AgentProviderID::antigravity());
    EXPECT_EQ(snapshots[2].source, SnapshotSource::live);
    EXPECT_FALSE(snapshots[2].windows.empty());
    EXPECT_EQ(result.errors, "");
    expectNothingLeft();
}

TEST_F(UsageCommand, ReadsTheNamedAgentsAloneAndTellsFailuresOnce) {
    sandbox.uninstall("codex");
    sandbox.play("agy", "empty-groups");
    const ProgramResult result = usage({"--json", "--agent", "antigravity", "--agent", "codex"});
    EXPECT_EQ(result.status, 1);
    const auto snapshots = snapshotsFromDocument(result.output);
    ASSERT_EQ(snapshots.size(), 2u);
    EXPECT_EQ(snapshots[0].error->kind(), Kind::executableMissing);
    EXPECT_EQ(snapshots[1].error->kind(), Kind::antigravityNoQuotas);
    EXPECT_THAT(result.errors, AllOf(HasSubstr("Codex CLI not found."), HasSubstr("Antigravity")));

    const ProgramResult table = usage({"--agent=codex"});
    EXPECT_EQ(table.status, 1);
    EXPECT_THAT(table.output, HasSubstr("Codex CLI not found."));
    EXPECT_EQ(table.errors, "");
}

TEST_F(UsageCommand, AFailureShowsTheLastFiguresAsOld) {
    ASSERT_EQ(usage({"--agent=antigravity"}).status, 0);
    sandbox.play("agy", "empty-groups");
    const ProgramResult result = usage({"--agent=antigravity"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.output, AllOf(HasSubstr("% left"), HasSubstr(" old")));
}

TEST_F(UsageCommand, ATerminalShowsTheLastFiguresWhileNewOnesAreRead) {
    ASSERT_EQ(usage({"--agent=codex"}).status, 0);
    sandbox.play("codex", "hang");
    ProgramRun run(setting({"usage", "--agent=codex"}, 80));
    ASSERT_TRUE(run.shows("Reading Codex"));
    // The agent hangs, in a group of its own that Ctrl-C does not reach.
    ASSERT_TRUE(becomesTrue([&] {
        const auto children = directChildren(run.pid());
        return children.size() == 2 && std::ranges::all_of(children, [&](pid_t child) {
                   return getpgid(child) != run.pid();
               });
    }));
    run.type("\x03");
    const ProgramResult result = run.wait();
    EXPECT_EQ(result.status, 128 + SIGINT);
    // They stay, and the line that told what is going on does not.
    const std::string last = result.output.substr(result.output.rfind("\033[J"));
    EXPECT_THAT(last, AllOf(HasSubstr("78% left"), Not(HasSubstr("Reading"))));
}

TEST_F(UsageCommand, AWayOfReadingMustBeOneOfTheAgentsThatAreRead) {
    EXPECT_EQ(usage({"--by", "telepathy"}).status, 2);
    EXPECT_EQ(usage({"--by", "query", "--agent", "codex"}).status, 2);
    const auto bySession = usage({"--by", "session", "--agent", "claude", "--json"});
    ASSERT_EQ(bySession.status, 0);
    EXPECT_EQ(std::get<SnapshotNote::ReadingWay>(
                  snapshotsFromDocument(bySession.output).front().notes.at(0).value)
                  .way,
              "session");
}

TEST_F(UsageCommand, ReadsADisabledAgentOnlyWhenItIsNamed) {
    setPreferences(R"({"DisabledProviders":["codex","claude"]})");
    EXPECT_EQ(snapshotsFromDocument(usage({"--json"}).output).size(), 1u);
    const auto named = usage({"--json", "--agent", "codex"});
    EXPECT_EQ(snapshotsFromDocument(named.output).front().id, AgentProviderID::codex());
}

TEST_F(UsageCommand, ColoursAndProgressAreForTerminalsAlone) {
    const std::vector<std::string> agents{"usage", "--agent", "codex", "--agent", "antigravity"};
    const ProgramResult plain = run(agents);
    EXPECT_THAT(plain.output,
                AllOf(HasSubstr("Codex"), HasSubstr("% left"), Not(HasSubstr("\x1b"))));
    EXPECT_EQ(plain.errors, "");

    const ProgramResult terminal = ProgramRun::of(setting(agents, 80));
    EXPECT_THAT(terminal.output, AllOf(HasSubstr("\x1b[32m"), HasSubstr("Reading Codex")));

    auto noColor = setting(agents, 80);
    noColor.environment["NO_COLOR"] = "1";
    EXPECT_THAT(ProgramRun::of(noColor).output, Not(ContainsRegex("\x1b\\[[0-9;]*m")));
    noColor.arguments.push_back("--color=always");
    EXPECT_THAT(ProgramRun::of(noColor).output, HasSubstr("\x1b[32m"));
    auto never = setting(agents, 80);
    never.arguments.push_back("--color=never");
    EXPECT_THAT(ProgramRun::of(never).output, Not(ContainsRegex("\x1b\\[[0-9;]*m")));
}

TEST_F(UsageCommand, TextOfAnAgentCannotSteerTheTerminal) {
    sandbox.installScript("agy", "printf '\\033]0;title\\007\\033[31mGemini Models  Weekly limit "
                                 "remaining  50%%\\r\\n'");
    const ProgramResult result = usage({"--agent", "antigravity"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_THAT(result.output, AllOf(HasSubstr("50% left"), Not(HasSubstr("\x1b")),
                                     Not(HasSubstr("\r")), Not(HasSubstr("\x07"))));
}

TEST_F(UsageCommand, AReaderThatLeavesIsNoFault) {
    // "head" has gone by the time the table is written.
    const std::string command = builtProgram("vellmark") + " --sandbox '" +
                                sandbox.machine().home.parent_path().string() +
                                "' usage --agent codex 2>'" +
                                (sandbox.machine().home / "errors").string() + "' | head -c 0";
    EXPECT_EQ(std::system(command.c_str()), 0);
    EXPECT_EQ(contentOf(sandbox.machine().home / "errors"), "");
    expectNothingLeft();
}

TEST_F(UsageCommand, EndsEverythingOnASignalWhateverTheAgentsDo) {
    for (const char* scenario : {"hang", "deaf"}) {
        for (const char* agent : {"claude", "codex", "agy"}) {
            sandbox.play(agent, scenario);
        }
        // A session: its interpreter has a child of its own.
        ProgramRun run(setting({"usage", "--by", "session"}, 80));
        ASSERT_TRUE(run.shows("Reading Codex")) << scenario;
        ASSERT_TRUE(becomesTrue([&] { return hasGrandchild(run.pid()); })) << scenario;
        const auto pressed = std::chrono::steady_clock::now();
        run.type("\x03");
        const ProgramResult result = run.wait();
        EXPECT_EQ(result.status, 128 + SIGINT) << scenario;
        EXPECT_LT(std::chrono::steady_clock::now() - pressed, std::chrono::seconds(10));
        expectNothingLeft();
    }
}

TEST_F(UsageCommand, ASandboxThatCannotBeMadeIsNamed) {
    const ProgramResult result =
        ProgramRun::of({.arguments = {"--sandbox", "/dev/null/nowhere", "usage"}});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.errors, HasSubstr("/dev/null/nowhere"));
    EXPECT_EQ(result.output, "");
}

TEST(Demo, LeavesNothingBehindAlsoWhenItIsInterrupted) {
    TemporaryDirectory temporary;
    const ProgramRun::Setting demo{.arguments = {"--demo"},
                                   .environment = {{"TMPDIR", temporary.path().string()}},
                                   .columns = 80};
    {
        ProgramRun run(demo);
        ASSERT_TRUE(run.shows("Reading"));
        run.type("\x03");
        EXPECT_EQ(run.wait().status, 128 + SIGINT);
        EXPECT_TRUE(fs::is_empty(temporary.path()));
    }
    {
        // Killed without a chance: the next demo removes what is left.
        ProgramRun run(demo);
        ASSERT_TRUE(run.shows("Reading"));
        kill(run.pid(), SIGKILL);
        run.wait();
        EXPECT_FALSE(fs::is_empty(temporary.path()));
    }
    // What only looks like a demo's directory is somewhere else.
    const TemporaryDirectory elsewhere;
    elsewhere.write("lock", "");
    elsewhere.write("treasure", "");
    fs::create_directory_symlink(elsewhere.path(), temporary / "vellmark-demo-link");
    const ProgramResult result = ProgramRun::of(demo);
    EXPECT_EQ(result.status, 0) << result.output;
    EXPECT_THAT(result.output, AllOf(HasSubstr("Codex"), HasSubstr("Claude")));
    EXPECT_TRUE(fs::exists(elsewhere / "treasure"));
    fs::remove(temporary / "vellmark-demo-link");
    EXPECT_TRUE(fs::is_empty(temporary.path()));
}

} // namespace
} // namespace vellmark::tests
