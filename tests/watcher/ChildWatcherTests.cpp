#include "platform/ProcessTable.h"
#include "probes/ChildWatcher.h"
#include "probes/LaunchedChild.h"
#include "probes/RunningChildren.h"
#include "support/ProcessCensus.h"
#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <charconv>
#include <csignal>
#include <functional>
#include <sys/wait.h>
#include <unistd.h>

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
    configuration.environment = {{"PATH", "/usr/bin:/bin"}};
    return LaunchedChild(configuration, ChildStreams{});
}

pid_t noted(const TemporaryDirectory& directory, const char* name) {
    const std::string text = contentOf(directory / name);
    pid_t pid = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), pid);
    return result.ec == std::errc() && result.ptr != text.data() + text.size() ? pid : 0;
}

/// Runs `program` in a process of its own, which the watcher takes for the program.
pid_t runAsProgram(const std::function<void()>& program) {
    const pid_t pid = ::fork();
    if (pid == 0) {
        program();
        ::_exit(0);
    }
    return pid;
}

void waitForEnd(pid_t program) {
    int status = 0;
    ::waitpid(program, &status, 0);
}

TEST(ChildWatcher, EndsADeafFamilyWhenTheProgramIsKilled) {
    const TemporaryDirectory directory;
    const pid_t program = runAsProgram([&] {
        if (!startChildWatcher())
            ::_exit(1);
        const LaunchedChild child = launch(directory, deafFamily);
        ::pause();
    });
    ASSERT_TRUE(becomesTrue(
        [&] { return noted(directory, "child") > 0 && noted(directory, "grandchild") > 0; }));
    const auto child = ProcessHandle::open(noted(directory, "child"));
    const auto grandchild = ProcessHandle::open(noted(directory, "grandchild"));
    ASSERT_TRUE(child && grandchild);

    ::kill(program, SIGKILL);
    const auto killedAt = std::chrono::steady_clock::now();
    waitForEnd(program);
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
        if (!startChildWatcher())
            ::_exit(1);
        const LaunchedChild child =
            launch(directory, "echo $$ > \"$1/child\"; while :; do sleep 1; done");
        RunningChildren::remove(child.pid());
        ::pause();
    });
    ASSERT_TRUE(becomesTrue([&] { return noted(directory, "child") > 0; }));
    const auto child = ProcessHandle::open(noted(directory, "child"));
    ASSERT_TRUE(child);
    pid_t watcher = 0;
    for (const pid_t each : directChildren(program))
        watcher = each != child->pid() ? each : watcher;
    ASSERT_GT(watcher, 0);

    ::kill(program, SIGKILL);
    waitForEnd(program);
    // The watcher has worked when it has gone.
    EXPECT_TRUE(becomesTrue([&] { return !isProcessAlive(watcher); }));
    EXPECT_TRUE(child->isAlive());
    child->signal(SIGKILL);
}

// The watcher must not hold up a program that ends in order.
TEST(ChildWatcher, GoesWithTheProgram) {
    const TemporaryDirectory directory;
    const pid_t program = runAsProgram([&] {
        if (!startChildWatcher())
            ::_exit(1);
        directory.write("watcher", std::to_string(directChildren(::getpid()).front()) + "\n");
    });
    waitForEnd(program);
    const pid_t watcher = noted(directory, "watcher");
    ASSERT_GT(watcher, 0);
    EXPECT_TRUE(becomesTrue([&] { return !isProcessAlive(watcher); }));
}

TEST(ChildWatcher, LeavesNoZombieWhenItIsKilledItself) {
    const TemporaryDirectory directory;
    const pid_t program = runAsProgram([&] {
        if (!startChildWatcher())
            ::_exit(1);
        ::kill(directChildren(::getpid()).front(), SIGKILL);
        if (!becomesTrue(hasZombieChild))
            ::_exit(2);
        // The next child of the program is the occasion to see it.
        launch(directory, "exit").collect();
        ::_exit(hasZombieChild() ? 3 : 0);
    });
    int status = 0;
    ::waitpid(program, &status, 0);
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

} // namespace
} // namespace vellmark::tests
