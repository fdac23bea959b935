#include "platform/ProcessEnd.h"
#include "platform/ProcessTable.h"
#include "support/Matchers.h"
#include "support/ProcessCensus.h"

#include <optional>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>

namespace vellmark::tests {
namespace {

/// A child that sleeps until it is killed, and stays a zombie until it is collected.
class SleepingChild {
public:
    SleepingChild() : pid_(::fork()) {
        if (pid_ == 0) {
            for (;;) {
                ::pause();
            }
        }
    }
    ~SleepingChild() {
        kill();
        ::waitpid(pid_, nullptr, 0);
    }
    pid_t pid() const { return pid_; }
    void kill() const { ::kill(pid_, SIGKILL); }

private:
    pid_t pid_;
};

bool hasEnded(const ProcessEnd& end, int milliseconds) {
    pollfd event{end.descriptor(), POLLIN, 0};
    return ::poll(&event, 1, milliseconds) == 1;
}

TEST(ProcessTable, ListsLivingDirectChildrenOnly) {
    const SleepingChild first;
    const SleepingChild second;
    EXPECT_THAT(directChildren(::getpid()), Contains(first.pid()));
    EXPECT_THAT(directChildren(::getpid()), Contains(second.pid()));
    EXPECT_THAT(directChildren(::getppid()), Not(Contains(first.pid())));
    EXPECT_THAT(directChildren(first.pid()), IsEmpty());
    first.kill();
    EXPECT_TRUE(becomesTrue([&] { return !isProcessAlive(first.pid()); }));
    EXPECT_THAT(directChildren(::getpid()), Not(Contains(first.pid())));
    EXPECT_TRUE(isProcessAlive(second.pid()));
}

TEST(ProcessTable, AHandleKnowsItsProcessThroughItsEnd) {
    std::optional<ProcessHandle> handle;
    {
        const SleepingChild child;
        handle = ProcessHandle::open(child.pid());
        ASSERT_TRUE(handle);
        EXPECT_EQ(handle->pid(), child.pid());
        EXPECT_TRUE(handle->isAlive());
        EXPECT_TRUE(handle->signal(SIGKILL));
        EXPECT_TRUE(becomesTrue([&] { return !handle->isAlive(); })) << "a zombie is not alive";
    }
    EXPECT_FALSE(handle->isAlive());
    EXPECT_FALSE(handle->signal(SIGKILL)) << "collected: the number may be another's";
    EXPECT_FALSE(ProcessHandle::open(handle->pid()));
}

TEST(ProcessTable, AHandleOfAChildIsNotGivenForAStranger) {
    const SleepingChild child;
    EXPECT_TRUE(ProcessHandle::openChild(child.pid(), ::getpid()));
    EXPECT_FALSE(ProcessHandle::openChild(child.pid(), child.pid()));
    EXPECT_FALSE(ProcessHandle::openChild(1, ::getpid()));
    EXPECT_FALSE(ProcessHandle::open(-1));
    EXPECT_FALSE(ProcessHandle::open(0));
}

TEST(ProcessEnd, IsReadableFromTheEndOfTheChildOn) {
    const SleepingChild child;
    const ProcessEnd end(child.pid());
    EXPECT_FALSE(hasEnded(end, 0));
    child.kill();
    EXPECT_TRUE(hasEnded(end, 20'000));
    EXPECT_TRUE(becomesTrue(hasZombieChild));
    EXPECT_TRUE(hasEnded(ProcessEnd(child.pid()), 20'000)) << "asked for after the end";
}

} // namespace
} // namespace vellmark::tests
