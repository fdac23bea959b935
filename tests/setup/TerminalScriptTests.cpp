#include "process/BoundedProcess.h"
#include "setup/TerminalScript.h"
#include "support/ProcessCensus.h"
#include "support/TemporaryDirectory.h"
#include "support/TestTerminal.h"

#include <gtest/gtest.h>

#include <csignal>
#include <string>
#include <thread>

namespace vellmark::tests {
namespace {

class TerminalScriptRun : public testing::Test {
protected:
    void SetUp() override {
        if (!TerminalScript::shell()) {
            GTEST_SKIP() << "/bin/zsh is not installed";
        }
    }

    /// A script with a member of its group that is deaf and not its child.
    std::string scriptOverADeafOne(const std::string& end) const {
        return "(sh -c 'trap \"\" TERM HUP INT; echo $$ > " + (directory / "deaf").string() +
               "; while :; do sleep 0.05; done' &)\nwhile [ ! -s " + (directory / "deaf").string() +
               " ]; do sleep 0.02; done\n" + end + "\n";
    }
    bool isDeafOneThere() const { return contentOf(directory / "deaf").ends_with('\n'); }
    /// Once it is there.
    pid_t deaf() const { return static_cast<pid_t>(std::stoi(contentOf(directory / "deaf"))); }

    TemporaryDirectory directory;
    const Machine machine = Machine::sandbox(directory.path());
};

TEST_F(TerminalScriptRun, MayUseTheTerminalAndLeavesNoFile) {
    EXPECT_EQ(statusOnTerminal([this](int terminal) {
                  return TerminalScript(machine, terminal).run("stty -echo </dev/tty && exit 7");
              }),
              7);
    EXPECT_TRUE(std::filesystem::is_empty(machine.temporary));
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
        std::filesystem::remove(directory / "deaf");
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

} // namespace
} // namespace vellmark::tests
