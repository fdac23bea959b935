#include "platform/UserTerminal.h"
#include "process/BoundedProcess.h"
#include "setup/TerminalScript.h"
#include "setup/TerminalWindow.h"
#include "support/Matchers.h"
#include "support/ProcessCensus.h"
#include "support/TemporaryDirectory.h"
#include "support/TestTerminal.h"

#include <csignal>
#include <utime.h>

namespace vellmark::tests {
namespace {

using Stage = SetupRun::Stage;
using State = SetupRun::State;

const SetupWindowTexts texts{.close = "l'end"};
const Instant start{Seconds(1000)};

/// A machine of its own, where there is the shell that scripts are for.
class ZshTest : public testing::Test {
protected:
    void SetUp() override {
        if (!TerminalScript::shell()) {
            GTEST_SKIP() << "/bin/zsh is not installed";
        }
    }

    TemporaryDirectory directory;
    Machine machine = Machine::sandbox(directory / "machine");
};

/// "Terminals" are scripts: what a window would show goes where the test reads it.
class TerminalWindowTest : public ZshTest {
protected:
    UserTerminal terminal(const std::string& name, const std::string& script) {
        return {.program = directory.writeExecutable(name, "#!/bin/sh\n" + script),
                .arguments = {"-e"}};
    }
    /// Runs what it is given, without the first word, in a session of its own as a terminal does.
    UserTerminal working() {
        return terminal("working", "shift\nexec setsid -w \"$@\" </dev/null >" +
                                       (directory / "screen").string() + " 2>&1\n");
    }
    std::unique_ptr<SetupRun> open(const std::string& script, std::vector<UserTerminal> terminals) {
        return TerminalWindow::open(machine, script, texts, start, std::move(terminals));
    }
    static bool becomes(SetupRun& run, State state, Instant now = start) {
        return becomesTrue([&] { return run.look(now) == state; });
    }
    fs::path scriptDirectory() const { return *fs::directory_iterator(machine.temporary); }

    /// The process around the script, once it has said which it is.
    pid_t frame() const {
        const auto word = scriptDirectory() / "process";
        EXPECT_TRUE(becomesTrue([&] { return contentOf(word).ends_with('\n'); }));
        return std::stoi(contentOf(word));
    }
};

TEST_F(TerminalWindowTest, TellsHowTheScriptEndedAndLeavesNoFile) {
    machine.environment["HOME"] = "/nonexistent"; // as a terminal has it that ran before
    machine.environment["XDG_ACTIVATION_TOKEN"] = "of this program's start";
    auto run = open("echo at $HOME$XDG_ACTIVATION_TOKEN; cat " + (directory / "gate").string() +
                        " && exit 6",
                    {working()});
    EXPECT_EQ(run->look(start).stage, Stage::opening);
    EXPECT_TRUE(becomes(*run, {Stage::ended, 1})) << contentOf(directory / "screen");
    EXPECT_THAT(contentOf(directory / "screen"), HasSubstr("at " + machine.home.string() + "\n"));
    EXPECT_TRUE(becomesTrue(
        [&] { return contentOf(directory / "screen").find("l'end") != std::string::npos; }));
    directory.write("gate", "");
    run = open("cat " + (directory / "gate").string() + " && exit 6", {working()});
    EXPECT_TRUE(becomes(*run, {Stage::ended, 6}));
    run.reset();
    EXPECT_TRUE(fs::is_empty(machine.temporary));
}

TEST_F(TerminalWindowTest, KeepsTheScriptFromEverybodyElse) {
    const auto run = open("sleep 60", {working()});
    struct stat status {};
    ASSERT_EQ(::stat(scriptDirectory().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0700u);
    for (const char* file : {"setup.zsh", "setup.command"}) {
        ASSERT_EQ(::stat((scriptDirectory() / file).c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 07777, 0600u) << file;
    }
    ASSERT_TRUE(becomes(*run, {Stage::running, 0}));
    ::kill(-frame(), SIGHUP);
    EXPECT_TRUE(becomes(*run, {Stage::closed, 0})) << "a window that was closed half-way";
}

// Ctrl-C reaches everybody in the foreground; the frame around the script must live to tell.
TEST_F(TerminalWindowTest, TellsAnInterruptionFromAClosedWindow) {
    const auto run = open("touch " + (directory / "works").string() + "; sleep 60", {working()});
    ASSERT_TRUE(becomes(*run, {Stage::running, 0}));
    ASSERT_TRUE(becomesTrue([&] { return fs::exists(directory / "works"); }));
    ::kill(-frame(), SIGINT);
    EXPECT_TRUE(becomes(*run, {Stage::ended, 130}));
}

TEST_F(TerminalWindowTest, TriesTheNextTerminalWhereOneFailsAndSaysWhenNoneIsLeft) {
    const UserTerminal missing{.program = directory / "missing", .arguments = {}};
    auto run = open("exit 0", {missing, terminal("failing", "exit 1"), working()});
    EXPECT_TRUE(becomes(*run, {Stage::ended, 0}));
    run = open("exit 0", {terminal("failing", "exit 1")});
    EXPECT_TRUE(becomes(*run, {Stage::noWindow, 0}));
    EXPECT_THROW(open("exit 0", {missing}), std::system_error);
    // One that has handed its window to somebody else gets time.
    run = open("exit 0", {terminal("silent", "exit 0")});
    EXPECT_FALSE(becomesTrue([&] { return run->look(start).stage != Stage::opening; },
                             std::chrono::milliseconds(300)));
    EXPECT_TRUE(becomes(*run, {Stage::noWindow, 0}, start + Seconds(21)));
}

TEST_F(TerminalWindowTest, RunsTheScriptOnceHoweverManyWindowsCome) {
    const std::string count = (directory / "count").string();
    const auto run =
        open("echo once >>" + count, {terminal("twice", "shift\n\"$@\" </dev/null >/dev/null &\n"
                                                        "\"$@\" </dev/null >/dev/null &\nwait\n")});
    EXPECT_TRUE(becomes(*run, {Stage::ended, 0}));
    EXPECT_EQ(contentOf(count), "once\n");
}

TEST_F(TerminalWindowTest, RemovesWhatAKilledProgramLeft) {
    const auto left = machine.temporary / "vellmark-setup-abcdef";
    fs::create_directory(left);
    TerminalWindow::removeAbandoned(machine);
    EXPECT_TRUE(fs::exists(left)) << "another program may be making it";
    const utimbuf longAgo{1, 1};
    ::utime(left.c_str(), &longAgo);
    TerminalWindow::removeAbandoned(machine);
    EXPECT_FALSE(fs::exists(left));
}

class TerminalScriptRun : public ZshTest {
protected:
    /// A script with a member of its group that is deaf and not its child.
    std::string scriptOverADeafOne(const std::string& end) const {
        return "(sh -c 'trap \"\" TERM HUP INT; echo $$ > " + (directory / "deaf").string() +
               "; while :; do sleep 0.05; done' &)\nwhile [ ! -s " + (directory / "deaf").string() +
               " ]; do sleep 0.02; done\n" + end + "\n";
    }
    bool isDeafOneThere() const { return contentOf(directory / "deaf").ends_with('\n'); }
    /// Once it is there.
    pid_t deaf() const { return static_cast<pid_t>(std::stoi(contentOf(directory / "deaf"))); }
};

TEST_F(TerminalScriptRun, MayUseTheTerminalAndLeavesNoFile) {
    EXPECT_EQ(statusOnTerminal([this](int terminal) {
                  return TerminalScript(machine, terminal).run("stty -echo </dev/tty && exit 7");
              }),
              7);
    EXPECT_TRUE(fs::is_empty(machine.temporary));
}

TEST_F(TerminalScriptRun, EndsWithItsWholeGroup) {
    EXPECT_EQ(statusOnTerminal([this](int terminal) {
                  std::thread ending([this] {
                      // Ended before it is registered, the script would be no run at all.
                      becomesTrue([this] {
                          return isDeafOneThere() && !RunningChildren::snapshot().empty();
                      });
                      terminateAllChildren(Seconds(0.3));
                  });
                  TerminalScript(machine, terminal).run(scriptOverADeafOne("sleep 60"));
                  ending.join();
                  return 0;
              }),
              0);
    EXPECT_TRUE(becomesTrue([this] { return !isProcessAlive(deaf()); }));
}

TEST_F(TerminalScriptRun, AnInterruptedOneTakesItsGroupWithItAndAnEndedOneDoesNot) {
    const auto statusOf = [this](const std::string& end) {
        fs::remove(directory / "deaf");
        return statusOnTerminal([this, end](int terminal) {
            return TerminalScript(machine, terminal).run(scriptOverADeafOne(end));
        });
    };
    EXPECT_EQ(statusOf("kill -INT $$"), 128 + SIGINT);
    EXPECT_TRUE(becomesTrue([this] { return !isProcessAlive(deaf()); }));
    EXPECT_EQ(statusOf("exit 3"), 3);
    EXPECT_TRUE(isProcessAlive(deaf()));
    ::kill(deaf(), SIGKILL);
}

#ifndef __APPLE__
TEST(UserTerminals, TheUsersOwnComesBeforeTheDesktopsAndThatBeforeTheCommonOnes) {
    const TemporaryDirectory directory;
    Machine machine = Machine::sandbox(directory / "machine");
    for (const char* name : {"foot", "x-terminal-emulator", "xfce4-terminal", "xterm", "konsole"}) {
        directory.writeExecutable(std::string("bin/") + name, "");
    }
    directory.write("bin/kitty", ""); // no program
    directory.write("machine/home/.config/xfce4/helpers.rc",
                    "WebBrowser=x\nTerminalEmulator=konsole\n");
    const auto found = [&] {
        std::vector<std::string> commands;
        for (const UserTerminal& terminal : userTerminals(machine)) {
            std::string command = terminal.program.filename();
            for (const std::string& argument : terminal.arguments) {
                command += " " + argument;
            }
            commands.push_back(command);
        }
        return commands;
    };
    machine.environment = {{"PATH", "relative:" + (directory / "bin").string()},
                           {"TERMINAL", "foot --app-id=own"},
                           {"XDG_CURRENT_DESKTOP", "ubuntu:XFCE"}};
    EXPECT_THAT(found(), ElementsAre()) << "no display";
    machine.environment["DISPLAY"] = ":7";
    EXPECT_THAT(found(), ElementsAre("foot --app-id=own", "konsole -e", "xfce4-terminal -x",
                                     "x-terminal-emulator -e", "foot", "xterm -e"));
    machine.environment["TERMINAL"] = "kitty";
    EXPECT_EQ(found().front(), "konsole -e");
    machine.environment["PATH"] = (directory / "nowhere").string();
    EXPECT_THAT(found(), ElementsAre());
}
#endif

} // namespace
} // namespace vellmark::tests
