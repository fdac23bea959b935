#include "process/BackgroundReaper.h"
#include "process/BoundedProcess.h"
#include "process/ChildOutputs.h"
#include "process/PrivateTemporaryFile.h"
#include "process/ShellChild.h"
#include "support/TestTerminal.h"

#include <gtest/gtest.h>

#include <atomic>
#include <fcntl.h>
#include <signal.h>
#include <stdlib.h>
#include <system_error>
#include <thread>
#include <vector>

namespace vellmark::tests {
namespace {

constexpr Seconds longLimit{60};
constexpr Seconds longGrace{30};

BoundedProcessResult runShell(const std::string& script, Seconds limit = longLimit,
                              Seconds grace = longGrace) {
    ChildConfiguration child = shellChild(script);
    child.standardOutput = ChildOutput::captured(1 << 20);
    child.standardError = ChildOutput::captured(1 << 20);
    return BoundedProcess::run(child, limit, grace);
}

TEST(BoundedProcess, ReportsHowTheChildEnded) {
    const auto exited = runShell("echo out; echo problem >&2; exit 7");
    EXPECT_EQ(exited.terminationStatus, 7);
    EXPECT_FALSE(exited.uncaughtSignal);
    EXPECT_FALSE(exited.timedOut);
    EXPECT_EQ(exited.output, "out\n");
    EXPECT_EQ(exited.errorOutput, "problem\n");
    EXPECT_GT(exited.launch.count(), 0);
    EXPECT_GE(exited.elapsed, exited.launch);

    for (const int number : {SIGKILL, SIGTERM, SIGSEGV}) {
        const auto killed = runShell("ulimit -c 0; kill -" + std::to_string(number) + " $$");
        EXPECT_EQ(killed.terminationStatus, number);
        EXPECT_TRUE(killed.uncaughtSignal);
        EXPECT_FALSE(killed.timedOut);
    }
}

TEST(BoundedProcess, ALaunchThatFailsThrowsAndLeavesNothing) {
    const TemporaryDirectory directory;
    const auto descriptors = openDescriptorCount();
    const auto launchError = [](const fs::path& program, const fs::path& folder = {}) {
        ChildConfiguration child;
        child.executable = program;
        child.workingDirectory = folder;
        child.standardOutput = ChildOutput::captured(10);
        try {
            BoundedProcess::run(child, longLimit, longGrace);
        } catch (const std::system_error& error) {
            return error.code();
        }
        return std::error_code();
    };
    EXPECT_EQ(launchError(directory / "missing"), std::errc::no_such_file_or_directory);
    EXPECT_EQ(launchError(directory.write("plain", "no program")), std::errc::permission_denied);
    EXPECT_EQ(launchError(directory.path()), std::errc::permission_denied);
    EXPECT_EQ(launchError("/bin/sh", directory / "nowhere"), std::errc::no_such_file_or_directory);
    EXPECT_TRUE(RunningChildren::snapshot().empty());
    EXPECT_EQ(openDescriptorCount(), descriptors);
    EXPECT_FALSE(hasZombieChild());
}

TEST(BoundedProcess, TheChildGetsWhatIsNamedAndNothingElse) {
    const TemporaryDirectory directory;
    ::setenv("VELLMARK_TEST_INHERITED", "1", 1);
    const int stray = ::open("/dev/null", O_RDONLY);
    ChildConfiguration child = shellChild("pwd; echo \"$GIVEN:$VELLMARK_TEST_INHERITED:$1\"; "
                                          "cat; test -e /dev/fd/" +
                                          std::to_string(stray) + " && echo leaked; exit 0");
    child.arguments.insert(child.arguments.end(), {"name", "two words"});
    child.environment["GIVEN"] = "yes";
    child.workingDirectory = directory.path();
    child.standardOutput = ChildOutput::captured(1000);
    const auto result = BoundedProcess::run(child, longLimit, longGrace);
    ::close(stray);
    ::unsetenv("VELLMARK_TEST_INHERITED");
    EXPECT_EQ(result.output, directory.path().string() + "\nyes::two words\n");
}

TEST(BoundedProcess, TheChildHandlesSignalsByDefault) {
    ::signal(SIGHUP, SIG_IGN);
    sigset_t blocked;
    sigset_t previous;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGUSR1);
    ::pthread_sigmask(SIG_BLOCK, &blocked, &previous);
    EXPECT_EQ(runShell("kill -HUP $$; exit 0").terminationStatus, SIGHUP);
    EXPECT_EQ(runShell("kill -USR1 $$; exit 0").terminationStatus, SIGUSR1);
    ::pthread_sigmask(SIG_SETMASK, &previous, nullptr);
    ::signal(SIGHUP, SIG_DFL);
}

TEST(BoundedProcess, AnInheritedDisregardForEndedChildrenLosesNoStatus) {
    const auto previous = ::signal(SIGCHLD, SIG_IGN);
    EXPECT_EQ(runShell("exit 3").terminationStatus, 3);
    ::signal(SIGCHLD, previous);
}

TEST(BoundedProcess, WritesToTheDescriptorsGiven) {
    const TemporaryDirectory directory;
    const auto path = directory / "both";
    const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    ChildConfiguration child = shellChild("echo out; echo problem >&2");
    child.standardOutput = ChildOutput::toDescriptor(file);
    child.mergesStandardError = true;
    BoundedProcess::run(child, longLimit, longGrace);
    EXPECT_EQ(::close(file), 0) << "the descriptor stays the caller's";
    EXPECT_EQ(contentOf(path), "out\nproblem\n");
}

TEST(BoundedProcess, OwnStandardStreamsMayBeSwapped) {
    const TemporaryDirectory directory;
    const int keptOutput = ::dup(STDOUT_FILENO);
    const int keptError = ::dup(STDERR_FILENO);
    const auto redirect = [](const fs::path& path, int stream) {
        const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
        ::dup2(file, stream);
        ::close(file);
    };
    redirect(directory / "1", STDOUT_FILENO);
    redirect(directory / "2", STDERR_FILENO);
    ChildConfiguration child = shellChild("echo out; echo problem >&2");
    child.standardOutput = ChildOutput::toDescriptor(STDERR_FILENO);
    child.standardError = ChildOutput::toDescriptor(STDOUT_FILENO);
    BoundedProcess::run(child, longLimit, longGrace);
    ::dup2(keptOutput, STDOUT_FILENO);
    ::dup2(keptError, STDERR_FILENO);
    ::close(keptOutput);
    ::close(keptError);
    EXPECT_EQ(contentOf(directory / "1"), "problem\n");
    EXPECT_EQ(contentOf(directory / "2"), "out\n");
}

TEST(BoundedProcess, DrainsWhatItDoesNotKeep) {
    ChildConfiguration child =
        shellChild("dd if=/dev/zero bs=1000000 count=20 2>/dev/null; echo problem >&2");
    child.standardOutput = ChildOutput::captured(1000);
    child.standardError = ChildOutput::captured(4);
    const auto result = BoundedProcess::run(child, longLimit, longGrace);
    EXPECT_EQ(result.terminationStatus, 0);
    EXPECT_EQ(result.output, std::string(1000, '\0'));
    EXPECT_EQ(result.errorOutput, "prob");
}

TEST(BoundedProcess, AChildThatOutgrowsItsRecordingIsStopped) {
    const TemporaryDirectory directory;
    const auto file = PrivateTemporaryFile::create(directory.path());
    ASSERT_TRUE(file);
    ChildConfiguration child = shellChild("echo begin; exec cat /dev/zero");
    child.standardOutput = ChildOutput::recorded(file->descriptor(), 1'000'000);
    const auto result = BoundedProcess::run(child, longLimit, longGrace);
    EXPECT_TRUE(result.outputCapped);
    EXPECT_FALSE(result.timedOut) << "it was not its time that was over";
    EXPECT_EQ(result.terminationStatus, SIGTERM);
    EXPECT_EQ(file->contents().size(), 1'000'000u);
    EXPECT_TRUE(file->contents().starts_with("begin\n"));
    EXPECT_TRUE(fs::is_empty(directory.path())) << "a file that can be found";

    child = shellChild("echo out; echo problem >&2");
    const auto none = PrivateTemporaryFile::create(directory.path());
    child.standardOutput = ChildOutput::recorded(none->descriptor(), 0);
    EXPECT_TRUE(BoundedProcess::run(child, longLimit, longGrace).outputCapped)
        << "also when it is seen after the child's end";
    const auto small = PrivateTemporaryFile::create(directory.path());
    child.standardOutput = ChildOutput::recorded(small->descriptor(), 12);
    child.mergesStandardError = true;
    EXPECT_FALSE(BoundedProcess::run(child, longLimit, longGrace).outputCapped);
    EXPECT_EQ(small->contents(), "out\nproblem\n");
}

// The reader may be late: on a busy machine it gets its turn when the time for reading is over.
TEST(BoundedProcess, WhatTheChildHasWrittenIsReadHoweverLate) {
    ChildConfiguration child = shellChild("echo text");
    child.standardOutput = ChildOutput::captured(100);
    ChildOutputs outputs(child);
    LaunchedChild launched(child, outputs.streams());
    outputs.closeChildEnds();
    launched.collect();
    outputs.drainUntil(ChildOutputs::Clock::now() - std::chrono::hours(1));
    EXPECT_EQ(outputs.takeOutput(), "text\n");
}

TEST(BoundedProcess, APipeThatAGrandchildHoldsDoesNotHoldTheRun) {
    const TemporaryDirectory directory;
    const auto start = std::chrono::steady_clock::now();
    const auto result =
        runShell("echo before; sleep 30 & echo $! > " + (directory / "pid").string());
    EXPECT_LT(Seconds(std::chrono::steady_clock::now() - start), Seconds(15));
    EXPECT_EQ(result.output, "before\n");
    ::kill(awaitedPid(directory / "pid"), SIGKILL);
}

TEST(BoundedProcess, AChildThatObeysEndsAtTheSoftStop) {
    const auto result = runShell("echo partly; exec sleep 30", Seconds(0.5), longGrace);
    EXPECT_TRUE(result.timedOut);
    EXPECT_TRUE(result.uncaughtSignal);
    EXPECT_EQ(result.terminationStatus, SIGTERM);
    EXPECT_EQ(result.output, "partly\n");
    EXPECT_GE(result.elapsed, Seconds(0.5));
    EXPECT_LT(result.elapsed, Seconds(15));
}

TEST(BoundedProcess, AChildThatCleansUpOnTheSoftStopKeepsItsStatus) {
    const auto result = runShell("trap 'echo tidied; exit 4' TERM; while :; do sleep 0.02; done",
                                 Seconds(0.5), longGrace);
    EXPECT_TRUE(result.timedOut);
    EXPECT_FALSE(result.uncaughtSignal);
    EXPECT_EQ(result.terminationStatus, 4);
    EXPECT_EQ(result.output, "tidied\n");
}

TEST(BoundedProcess, ADeafChildIsKilledAfterTheGrace) {
    const auto result =
        runShell("trap '' TERM; while :; do sleep 0.05; done", Seconds(0.5), Seconds(0.3));
    EXPECT_TRUE(result.timedOut);
    EXPECT_EQ(result.terminationStatus, SIGKILL);
    EXPECT_GE(result.elapsed, Seconds(0.8));
}

TEST(BoundedProcess, AStoppedChildCanObeyTheSoftStop) {
    const auto result = runShell("trap 'exit 4' TERM; kill -STOP $$; exit 5", Seconds(0.5));
    EXPECT_TRUE(result.timedOut);
    EXPECT_EQ(result.terminationStatus, 4);
}

TEST(BoundedProcess, AChildThatReachesForTheTerminalIsNotStopped) {
    // The program has a terminal, whose foreground the child is not in.
    EXPECT_EQ(statusOnTerminal([](int /*terminal*/) {
                  return runShell("stty -echo </dev/tty; exit 3", Seconds(5), Seconds(1))
                      .terminationStatus;
              }),
              3);
}

TEST(BoundedProcess, ALimitOfNothingStopsAtOnce) {
    for (const Seconds limit : {Seconds(0), Seconds(-5)}) {
        const auto result = runShell("exec sleep 30", limit, longGrace);
        EXPECT_TRUE(result.timedOut);
        EXPECT_EQ(result.terminationStatus, SIGTERM);
    }
}

TEST(BoundedProcess, AChildThatEndsInTimeIsNeverSignalled) {
    // Its own children would show it: they outlive it and would be told first.
    const TemporaryDirectory directory;
    const auto result =
        runShell("sleep 30 >/dev/null 2>&1 & echo $! > " + (directory / "pid").string(),
                 Seconds(0.3), Seconds(0.1));
    EXPECT_FALSE(result.timedOut);
    const pid_t left = awaitedPid(directory / "pid");
    std::this_thread::sleep_for(Seconds(0.6));
    EXPECT_TRUE(isProcessAlive(left));
    ::kill(left, SIGKILL);
}

TEST(BoundedProcess, DirectChildrenAreToldBeforeTheirParent) {
    const TemporaryDirectory directory;
    const auto log = (directory / "log").string();
    // The parent waits for its child after its own signal, so both always write.
    runShell("(trap 'echo child >> " + log + "; exit' TERM; while :; do sleep 0.01; done) & " +
                 "trap 'wait; echo parent >> " + log + "; exit' TERM; wait; wait",
             Seconds(0.5), longGrace);
    EXPECT_EQ(contentOf(log), "child\nparent\n");
}

TEST(BoundedProcess, ADeafGrandchildIsKilledThoughItsParentObeyed) {
    const TemporaryDirectory directory;
    const auto result = runShell(parentOfDeafChild(directory), Seconds(1), Seconds(2));
    EXPECT_EQ(result.terminationStatus, SIGTERM);
    const pid_t deaf = awaitedPid(directory / "pid");
    EXPECT_TRUE(isProcessAlive(deaf)) << "the run ends with its own child";
    EXPECT_TRUE(becomesTrue([deaf] { return !isProcessAlive(deaf); }));
}

TEST(BoundedProcess, TheGroupOfAStoppedChildGoesWithItAndWhatHasLeftItStays) {
    const TemporaryDirectory directory;
    const auto result = runShell(parentOfGroupAndDaemon(directory), Seconds(3), Seconds(1));
    EXPECT_EQ(result.terminationStatus, SIGTERM);
    const pid_t deaf = awaitedPid(directory / "pid");
    const pid_t daemon = awaitedPid(directory / "daemon");
    EXPECT_TRUE(RunningChildren::snapshot().empty());
    EXPECT_TRUE(becomesTrue([deaf] { return !isProcessAlive(deaf); }));
    EXPECT_TRUE(becomesTrue([] { return BackgroundReaper::snapshot().empty(); }));
    EXPECT_FALSE(hasZombieChild());
    EXPECT_TRUE(isProcessAlive(daemon));
    ::kill(daemon, SIGKILL);
}

// Told to stop, its members start others, which nobody has seen.
TEST(BoundedProcess, WhoIsBornAfterTheSoftStopGoesToo) {
    const TemporaryDirectory directory;
    const auto late = directory.write("late", deafShell(directory / "pid"));
    const auto member = directory.write(
        "member", "trap 'sleep 0.2; sh " + late.string() + " & exit' TERM; : > " +
                      (directory / "ready").string() + "; while :; do sleep 0.02; done");
    const auto result =
        runShell("(sh " + member.string() + " >/dev/null 2>&1 &); " + "while ! [ -e " +
                     (directory / "ready").string() + " ]; do sleep 0.02; done; sleep 30 & wait",
                 Seconds(3), Seconds(2));
    EXPECT_EQ(result.terminationStatus, SIGTERM);
    const pid_t deaf = awaitedPid(directory / "pid");
    EXPECT_TRUE(becomesTrue([deaf] { return !isProcessAlive(deaf); }));
}

TEST(BoundedProcess, TwoHundredChildrenAtOnce) {
    std::atomic<int> correct = 0;
    std::vector<std::thread> callers;
    for (int number = 0; number < 200; ++number) {
        callers.emplace_back([number, &correct] {
            const int status = number % 100;
            const auto result =
                runShell("echo " + std::to_string(number) + "; exit " + std::to_string(status));
            const bool matches = result.terminationStatus == status && !result.timedOut &&
                                 result.output == std::to_string(number) + "\n";
            correct += matches ? 1 : 0;
        });
    }
    for (auto& caller : callers) {
        caller.join();
    }
    EXPECT_EQ(correct, 200);
    EXPECT_TRUE(RunningChildren::snapshot().empty());
    EXPECT_FALSE(hasZombieChild());
}

TEST(BoundedProcess, ManyRunsHoldOnToNothing) {
    runShell("exit 0");
    const auto descriptors = openDescriptorCount();
    const auto threads = threadCount();
    for (int count = 0; count < 300; ++count) {
        runShell(count % 50 == 0 ? "exec sleep 9" : "echo text", Seconds(count % 50 == 0 ? 0 : 60));
    }
    // What watches a child may be let go a moment after its run, the first one's too.
    EXPECT_TRUE(becomesTrue([=] { return openDescriptorCount() <= descriptors; }));
    EXPECT_TRUE(becomesTrue([=] { return threadCount() <= threads; }));
    EXPECT_EQ(livingChildCount(), 0u);
    EXPECT_FALSE(hasZombieChild());
}

} // namespace
} // namespace vellmark::tests
