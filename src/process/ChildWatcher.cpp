#include "process/ChildWatcher.h"

#include "platform/ChildPipes.h"
#include "platform/ProgramPath.h"
#include "process/BackgroundThread.h"
#include "process/RunningChildren.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <string_view>
#include <sys/wait.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace vellmark {
namespace {

using Clock = std::chrono::steady_clock;
using Event = ChildWatcherMessage::Event;

constexpr std::chrono::seconds shortestRestartPause{1};
constexpr std::chrono::seconds longestRestartPause{600};
/// A watcher that has run this long was ended by some mishap that need not happen again.
constexpr std::chrono::seconds longLife{60};

/// The pipe to the watcher. It stays open for as long as the program runs and closes whatever ends
/// it: that is the message. Its number never changes, so that a write always reaches the watcher
/// that is running now.
std::atomic<int> lifeline{-1};
static_assert(std::atomic<int>::is_always_lock_free,
              "read between a child's birth and its program");

std::string_view bytesOf(const ChildWatcherMessage& message) {
    return {reinterpret_cast<const char*>(&message), sizeof message};
}

Event eventOf(RunningChildren::Report::Event event) {
    using Reported = RunningChildren::Report::Event;
    return event == Reported::started    ? Event::started
           : event == Reported::attached ? Event::attached
                                         : Event::ended;
}

/// Never waits: a watcher that has stopped must not stop the program. One that has died is being
/// started again and told everything then.
void tell(const RunningChildren::Report& report) {
    const ChildWatcherMessage message{eventOf(report.event), report.pid, report.at};
    writeWithoutSignal(lifeline, bytesOf(message));
}

/// Makes `end` the lifeline, in place of the one to an earlier watcher.
void connect(Descriptor end) {
    ::fcntl(end.get(), F_SETFL, O_NONBLOCK);
    if (lifeline >= 0) {
        ::dup2(end.get(), lifeline);
        ::fcntl(lifeline, F_SETFD, FD_CLOEXEC);
    } else {
        // Never closed: threads may still report while the program ends.
        lifeline = ::fcntl(end.get(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    }
}

/// Returns the watcher's number, or -1 when it cannot be launched.
pid_t launchedWatcher() {
    try {
        Pipe pipe = makePipe();
        ChildLaunch launch;
        launch.program = programPath().parent_path() / "vellmark-watcher";
        launch.streams = {pipe.readEnd.get(), -1, -1};
        const pid_t pid = launchChild(launch);
        connect(std::move(pipe.writeEnd));
        RunningChildren::setObserver(tell); // which tells it of what runs already
        return pid;
    } catch (const std::system_error&) {
        return -1;
    }
}

void awaitEnd(pid_t watcher) {
    while (::waitpid(watcher, nullptr, 0) < 0 && errno == EINTR) {
    }
}

/// Starts a new watcher whenever one has ended: at once, but with growing pauses when they do not
/// last or cannot be started.
[[noreturn]] void keepRunning(pid_t watcher) {
    std::chrono::seconds pause{0};
    for (auto startedAt = Clock::now();; startedAt = Clock::now()) {
        awaitEnd(watcher);
        if (Clock::now() - startedAt >= longLife) {
            pause = std::chrono::seconds::zero();
        }
        do {
            std::this_thread::sleep_for(pause);
            pause = std::clamp(pause * 2, shortestRestartPause, longestRestartPause);
            watcher = launchedWatcher();
        } while (watcher < 0);
    }
}

} // namespace

bool startChildWatcher() {
    const pid_t watcher = launchedWatcher();
    if (watcher < 0) {
        return false;
    }
    try {
        startBackgroundThread([watcher] { keepRunning(watcher); });
    } catch (const std::system_error&) {
        // Then this one must do.
    }
    return true;
}

void announceToChildWatcher(ChildLaunch::Stage stage) {
    const bool begins = stage == ChildLaunch::Stage::begins;
    const ChildWatcherMessage message{begins ? Event::started : Event::ended, ::getpid(),
                                      processTimeNow()};
    if (lifeline < 0) {
        return;
    }
    [[maybe_unused]] const auto written = ::write(lifeline, &message, sizeof message);
}

} // namespace vellmark
