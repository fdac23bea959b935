#include "process/BoundedProcess.h"
#include "process/ChildWatcher.h"
#include "process/LaunchedChild.h"
#include "process/RunningChildren.h"
#include "support/ProcessCensus.h"
#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <charconv>
#include <csignal>
#include <filesystem>
#include <functional>
#include <iterator>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace vellmark::tests {
namespace {

/// Deaf to everything that can be ignored, like its own child; says so once both are.
constexpr auto deafFamily = R"(trap '' TERM HUP INT
/bin/sh -c 'trap "" TERM HUP INT; echo $$ > "$0"; while :; do sleep 1; done' "$1/grandchild" &
echo $$ > "$1/child"
while :; do sleep 1; done
)";

LaunchedChild launch(const TemporaryDirectory& directory, const std::string& script) {
    ChildConfiguration configuration;
    configuration.executable = "/bin/sh";
    configuration.arguments = {"-c", script, "sh", directory.path().string()};
    configuration.environment = {{"PATH", "/usr/bin:/bin"}, {"MARK", directory.path().string()}};
    return LaunchedChild(configuration, ChildStreams{});
}

pid_t noted(const TemporaryDirectory& directory, const char* name) {
    const std::string text = contentOf(directory / name);
    pid_t pid = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), pid);
    return result.ec == std::errc() && result.ptr != text.data() + text.size() ? pid : 0;
}

/// Runs `program` in a process of its own, with a watcher that takes it for the program.
pid_t runAsProgram(const std::function<void()>& program) {
    const pid_t pid = ::fork();
    if (pid == 0) {
        if (!startChildWatcher()) {
            ::_exit(1);
        }
        program();
        ::_exit(0);
    }
    return pid;
}

void killAndCollect(pid_t program) {
    ::kill(program, SIGKILL);
    ::waitpid(program, nullptr, 0);
}

/// The watcher of the program that this is.
pid_t watcherOf(pid_t program, pid_t otherChild = 0) {
    for (const pid_t each : directChildren(program)) {
        if (each != otherChild) {
            return each;
        }
    }
    return 0;
}

TEST(ChildWatcher, EndsADeafFamilyWhenTheProgramIsKilled) {
    const TemporaryDirectory directory;
    const pid_t program = runAsProgram([&] {
        const LaunchedChild child = launch(directory, deafFamily);
        ::pause();
    });
    ASSERT_TRUE(becomesTrue(
        [&] { return noted(directory, "child") > 0 && noted(directory, "grandchild") > 0; }));
    const auto child = ProcessHandle::open(noted(directory, "child"));
    const auto grandchild = ProcessHandle::open(noted(directory, "grandchild"));
    ASSERT_TRUE(child && grandchild);

    const auto killedAt = std::chrono::steady_clock::now();
    killAndCollect(program);
    EXPECT_TRUE(becomesTrue([&] { return !child->isAlive() && !grandchild->isAlive(); }));
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - killedAt;
    // 2 s are promised; the rest is for a loaded machine.
    EXPECT_LT(took.count(), 4.0);
}

// What the program has reported as ended is not its own any more; whoever runs under that number
// now must not be touched.
TEST(ChildWatcher, LeavesAloneWhatHasEndedForTheProgram) {
    const TemporaryDirectory directory;
    const pid_t program = runAsProgram([&] {
        const LaunchedChild child =
            launch(directory, "echo $$ > \"$1/child\"; while :; do sleep 1; done");
        RunningChildren::remove(child.pid());
        directory.write("ended", "1\n");
        ::pause();
    });
    ASSERT_TRUE(becomesTrue(
        [&] { return noted(directory, "child") > 0 && noted(directory, "ended") > 0; }));
    const auto child = ProcessHandle::open(noted(directory, "child"));
    ASSERT_TRUE(child);
    const pid_t watcher = watcherOf(program, child->pid());
    ASSERT_GT(watcher, 0);

    killAndCollect(program);
    // The watcher has worked when it has gone.
    EXPECT_TRUE(becomesTrue([&] { return !isProcessAlive(watcher); }));
    EXPECT_TRUE(child->isAlive());
    child->signal(SIGKILL);
}

// The watcher must not hold up a program that ends in order.
TEST(ChildWatcher, GoesWithTheProgram) {
    const TemporaryDirectory directory;
    const pid_t program = runAsProgram(
        [&] { directory.write("watcher", std::to_string(watcherOf(::getpid())) + "\n"); });
    ::waitpid(program, nullptr, 0);
    const pid_t watcher = noted(directory, "watcher");
    ASSERT_GT(watcher, 0);
    EXPECT_TRUE(becomesTrue([&] { return !isProcessAlive(watcher); }));
}

/// Whether a watcher remembers a process: beside its standard streams it holds that alone.
bool holdsAChild(pid_t watcher) {
    std::error_code error;
    const fs::path process = "/proc/" + std::to_string(watcher);
    const fs::directory_iterator descriptors(process / "fd", error);
    return !error && contentOf(process / "cmdline").find("vellmark-watcher") != std::string::npos &&
           std::distance(begin(descriptors), end(descriptors)) > 3;
}

TEST(ChildWatcher, IsStartedAgainAndKnowsWhatRuns) {
    const TemporaryDirectory directory;
    const pid_t program = runAsProgram([&] {
        const LaunchedChild child = launch(directory, deafFamily);
        if (!becomesTrue([&] { return noted(directory, "grandchild") > 0; })) {
            ::_exit(2);
        }
        const pid_t first = watcherOf(::getpid(), child.pid());
        if (first <= 0) {
            ::_exit(4);
        }
        ::kill(first, SIGKILL);
        if (!becomesTrue([&] {
                const pid_t next = watcherOf(::getpid(), child.pid());
                return next > 0 && next != first && !hasZombieChild() && holdsAChild(next);
            })) {
            ::_exit(3);
        }
        directory.write("again", "1\n");
        ::pause();
    });
    ASSERT_TRUE(becomesTrue([&] { return noted(directory, "again") > 0; }));
    const auto child = ProcessHandle::open(noted(directory, "child"));
    const auto grandchild = ProcessHandle::open(noted(directory, "grandchild"));
    ASSERT_TRUE(child && grandchild);
    killAndCollect(program);
    EXPECT_TRUE(becomesTrue([&] { return !child->isAlive() && !grandchild->isAlive(); }));
}

// An interpreter that has ended leaves its program, in a session of its own, to a grace; nothing
// but what the watcher was told leads to it then.
TEST(ChildWatcher, KnowsWhatHasOutlivedACollectedChild) {
    const TemporaryDirectory directory;
    const auto deaf = directory.write("deaf", "trap '' TERM HUP INT; echo $$ > " +
                                                  (directory / "grandchild").string() +
                                                  "; while :; do sleep 0.05; done");
    const pid_t program = runAsProgram([&] {
        ChildConfiguration interpreter;
        interpreter.executable = "/bin/sh";
        interpreter.arguments = {
            "-c", "setsid sh " + deaf.string() + " >/dev/null 2>&1 & while [ ! -s " +
                      (directory / "grandchild").string() + " ]; do sleep 0.02; done; sleep 2"};
        interpreter.environment = {{"PATH", "/usr/bin:/bin"}};
        interpreter.stopsSurvivingChildren = true;
        BoundedProcess::run(interpreter, Seconds(60), Seconds(1000));
        directory.write("collected", "1\n");
        ::pause();
    });
    ASSERT_TRUE(becomesTrue([&] { return noted(directory, "collected") > 0; }));
    const auto left = ProcessHandle::open(noted(directory, "grandchild"));
    ASSERT_TRUE(left && left->isAlive());
    killAndCollect(program);
    EXPECT_TRUE(becomesTrue([&] { return !left->isAlive(); }));
}

/// The processes that carry `directory` in their environment.
std::vector<pid_t> inhabitants(const TemporaryDirectory& directory) {
    std::vector<pid_t> found;
    std::error_code ignored;
    for (const auto& process : fs::directory_iterator("/proc", ignored)) {
        const std::string environment = contentOf(process.path() / "environ");
        if (environment.find("MARK=" + directory.path().string() + '\0') != std::string::npos) {
            found.push_back(std::stoi(process.path().filename().string()));
        }
    }
    return found;
}

TEST(ChildWatcher, EndsAChildWheneverTheProgramIsKilledDuringTheLaunch) {
    const TemporaryDirectory directory;
    std::vector<pid_t> watchers;
    for (int round = 0; round < 100; ++round) {
        const std::string launching = "launching" + std::to_string(round);
        const pid_t program = runAsProgram([&] {
            directory.write(launching, "1\n");
            const LaunchedChild child = launch(directory, deafFamily);
            ::pause();
        });
        ASSERT_TRUE(becomesTrue([&] { return noted(directory, launching.c_str()) > 0; }));
        std::this_thread::sleep_for(std::chrono::microseconds(round * 300));
        watchers.push_back(watcherOf(program));
        killAndCollect(program);
    }
    for (const pid_t watcher : watchers) {
        ASSERT_TRUE(becomesTrue([watcher] { return !isProcessAlive(watcher); }));
    }
    // Who was not told is deaf and stays.
    std::vector<pid_t> left;
    EXPECT_TRUE(becomesTrue([&] { return (left = inhabitants(directory)).empty(); },
                            std::chrono::seconds(5)));
    for (const pid_t pid : left) {
        ::kill(pid, SIGKILL);
    }
}

} // namespace
} // namespace vellmark::tests
