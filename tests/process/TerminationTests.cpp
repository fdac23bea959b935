#include "platform/Descriptor.h"
#include "process/BackgroundReaper.h"
#include "process/BoundedProcess.h"
#include "process/ChildSession.h"
#include "process/ShellChild.h"
#include "support/Matchers.h"

#include <atomic>
#include <fcntl.h>
#include <map>
#include <memory>
#include <mutex>
#include <signal.h>
#include <sys/wait.h>
#include <system_error>
#include <thread>
#include <vector>

namespace vellmark::tests {
namespace {

/// A child that somebody else waits for: runs on a thread of its own until it ends.
class RunInBackground {
public:
    explicit RunInBackground(const std::string& script)
        : thread_([this, script] {
              result_ = BoundedProcess::run(shellChild(script), Seconds(60), Seconds(30));
          }) {
        EXPECT_TRUE(becomesTrue([] { return !RunningChildren::snapshot().empty(); }));
    }
    ~RunInBackground() {
        if (thread_.joinable()) {
            thread_.join();
        }
    }

    BoundedProcessResult result() {
        thread_.join();
        return result_;
    }

private:
    BoundedProcessResult result_;
    std::thread thread_;
};

class Termination : public ::testing::Test {
protected:
    ~Termination() override { RunningChildren::reopen(); }
    TemporaryDirectory directory;
};

TEST_F(Termination, OfNobodyLeavesTheRegistryAlone) {
    RunningChildren::insert(1'000'000'000);
    EXPECT_EQ(BoundedProcess::terminateAll({}, Seconds(10)), 0);
    EXPECT_THAT(RunningChildren::snapshot(), ElementsAre(1'000'000'000));
    RunningChildren::remove(1'000'000'000);
}

TEST_F(Termination, OfChildrenThatObeyKillsNone) {
    RunInBackground run("exec sleep 30");
    const auto children = RunningChildren::snapshot();
    EXPECT_EQ(BoundedProcess::terminateAll(children, Seconds(20)), 0);
    EXPECT_THAT(RunningChildren::snapshot(), IsEmpty());
    EXPECT_EQ(run.result().terminationStatus, SIGTERM);
}

TEST_F(Termination, OfADeafChildKillsItAfterTheGrace) {
    RunInBackground run(deafShell(directory / "pid"));
    awaitedPid(directory / "pid");
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(BoundedProcess::terminateAll(RunningChildren::snapshot(), Seconds(0.4)), 1);
    EXPECT_GE(Seconds(std::chrono::steady_clock::now() - start), Seconds(0.4));
    EXPECT_EQ(run.result().terminationStatus, SIGKILL);
}

TEST_F(Termination, KillsADeafGrandchildWhoseParentObeyed) {
    RunInBackground run(parentOfDeafChild(directory));
    const pid_t deaf = awaitedPid(directory / "pid");
    EXPECT_EQ(BoundedProcess::terminateAll(RunningChildren::snapshot(), Seconds(0.3)), 0)
        << "the child itself obeyed";
    EXPECT_TRUE(becomesTrue([deaf] { return !isProcessAlive(deaf); }));
}

TEST_F(Termination, EndsTheWholeGroupAndLeavesAloneWhatHasLeftIt) {
    RunInBackground run(parentOfGroupAndDaemon(directory));
    const pid_t deaf = awaitedPid(directory / "pid");
    const pid_t daemon = awaitedPid(directory / "daemon");
    EXPECT_EQ(BoundedProcess::terminateAll(RunningChildren::snapshot(), Seconds(0.3)), 0);
    EXPECT_TRUE(becomesTrue([deaf] { return !isProcessAlive(deaf); }));
    EXPECT_TRUE(isProcessAlive(daemon));
    ::kill(daemon, SIGKILL);
}

TEST_F(Termination, WithoutDescriptorsSignalsByNumber) {
#ifdef VELLMARK_ADDRESS_SANITIZER
    GTEST_SKIP()
        << "the sanitizer looks at memory by writing it to a pipe, which takes descriptors";
#endif
    RunInBackground obedient("sleep 30 & wait");
    const auto member = directory.write("member", deafShell(directory / "member-pid"));
    RunInBackground deaf("sh " + member.string() + " >/dev/null 2>&1 & " +
                         deafShell(directory / "pid"));
    EXPECT_TRUE(becomesTrue([] { return RunningChildren::snapshot().size() == 2; }));
    awaitedPid(directory / "pid");
    const pid_t deafMember = awaitedPid(directory / "member-pid");
    const auto children = RunningChildren::snapshot();
    std::vector<Descriptor> all;
    do {
        all.emplace_back(::open("/dev/null", O_RDONLY | O_CLOEXEC));
    } while (all.back().isOpen());
    const int killed = BoundedProcess::terminateAll(children, Seconds(0.5));
    all.clear();
    EXPECT_EQ(killed, 1);
    EXPECT_EQ(obedient.result().terminationStatus, SIGTERM);
    EXPECT_EQ(deaf.result().terminationStatus, SIGKILL);
    EXPECT_TRUE(becomesTrue([] { return livingChildCount() == 0; }));
    EXPECT_TRUE(becomesTrue([=] { return !isProcessAlive(deafMember); }));
}

TEST_F(Termination, AZombieCountsAsGone) {
    const pid_t zombie = ::fork();
    if (zombie == 0) {
        ::_exit(0);
    }
    EXPECT_TRUE(becomesTrue(hasZombieChild));
    const std::vector<pid_t> pids{zombie};
    EXPECT_EQ(BoundedProcess::terminateAll(pids, Seconds(10)), 0);
    ::waitpid(zombie, nullptr, 0);
}

TEST_F(Termination, ReachesNoProcessThatIsNotOurChild) {
    RunInBackground run("sleep 30 & echo $! > " + (directory / "pid").string() + "; wait");
    const std::vector<pid_t> grandchild{awaitedPid(directory / "pid")};
    EXPECT_EQ(BoundedProcess::terminateAll(grandchild, Seconds(0.1)), 0);
    EXPECT_TRUE(isProcessAlive(grandchild.front()));
    EXPECT_EQ(terminateAllChildren(Seconds(20)), 0);
}

TEST_F(Termination, OfEverythingIncludesTheReapersChildren) {
    {
        ChildSession session(shellChild(deafShell(directory / "pid")),
                             ChildSession::ErrorStream::nullDevice);
        awaitedPid(directory / "pid");
    }
    RunInBackground run("exec sleep 30");
    EXPECT_EQ(terminateAllChildren(Seconds(0.2)), 1) << "the deaf one, before its 3 s are over";
    EXPECT_TRUE(becomesTrue([] { return livingChildCount() == 0; }));
    EXPECT_TRUE(becomesTrue([] { return BackgroundReaper::snapshot().empty(); }));
    EXPECT_THAT(RunningChildren::snapshot(), IsEmpty());
}

TEST_F(Termination, OfEverythingEndsGrandchildrenThatOutlivedAStop) {
    const auto result =
        BoundedProcess::run(shellChild(parentOfDeafChild(directory)), Seconds(1), Seconds(1000));
    EXPECT_EQ(result.terminationStatus, SIGTERM);
    const pid_t deaf = awaitedPid(directory / "pid");
    ASSERT_TRUE(isProcessAlive(deaf));
    terminateAllChildren(Seconds(0.1));
    EXPECT_TRUE(becomesTrue([deaf] { return !isProcessAlive(deaf); }));
}

TEST_F(Termination, AClosedRegistryLaunchesNothing) {
    RunningChildren::close();
    const auto touched = directory / "touched";
    try {
        BoundedProcess::run(shellChild("echo > " + touched.string()), Seconds(60), Seconds(1));
        ADD_FAILURE() << "launched";
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code(), std::errc::operation_canceled);
    }
    EXPECT_FALSE(fs::exists(touched));
    EXPECT_FALSE(RunningChildren::insert(1));
}

TEST_F(Termination, AmidLaunchesLeavesNobody) {
    std::vector<std::thread> callers;
    std::atomic<int> launched = 0;
    for (int number = 0; number < 8; ++number) {
        callers.emplace_back([&launched] {
            try {
                for (;;) {
                    ++launched;
                    BoundedProcess::run(shellChild("exec sleep 30"), Seconds(0.02), Seconds(30));
                }
            } catch (const std::system_error&) {
            }
        });
    }
    EXPECT_TRUE(becomesTrue([&launched] { return launched > 40; }));
    terminateAllChildren(Seconds(20));
    for (auto& caller : callers) {
        caller.join();
    }
    EXPECT_EQ(livingChildCount(), 0u);
    EXPECT_FALSE(hasZombieChild());
}

TEST_F(Termination, TheObserverHearsOfEveryChildUntilItHasReallyEnded) {
    using Event = RunningChildren::Report::Event;
    std::mutex lock;
    std::map<pid_t, std::vector<Event>> heard;
    RunningChildren::setObserver([&](const RunningChildren::Report& report) {
        const std::lock_guard hold(lock);
        if (report.event != Event::attached) {
            heard[report.pid].push_back(report.event);
        }
    });
    BoundedProcess::run(shellChild("exit 0"), Seconds(60), Seconds(1));
    auto session = std::make_unique<ChildSession>(
        shellChild("trap '' TERM; echo ready; while :; do sleep 0.02; done"),
        ChildSession::ErrorStream::nullDevice);
    const pid_t left = session->processIdentifier();
    std::string ready;
    session->read(ready, Seconds(20));
    session.reset();
    const auto eventsOf = [&](pid_t pid) {
        const std::lock_guard hold(lock);
        return heard[pid];
    };
    EXPECT_THAT(RunningChildren::snapshot(), IsEmpty());
    EXPECT_THAT(BackgroundReaper::snapshot(), Contains(left));
    EXPECT_THAT(eventsOf(left), ElementsAre(Event::started));
    ::kill(left, SIGKILL);
    EXPECT_TRUE(becomesTrue([&] { return eventsOf(left).size() == 2; }));
    RunningChildren::setObserver({});
    EXPECT_EQ(heard.size(), 2u);
    for (const auto& [pid, events] : heard) {
        EXPECT_THAT(events, ElementsAre(Event::started, Event::ended));
    }
}

} // namespace
} // namespace vellmark::tests
