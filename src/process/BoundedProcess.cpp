#include "process/BoundedProcess.h"

#include "platform/ChildPipes.h"
#include "platform/ProcessTable.h"
#include "process/BackgroundReaper.h"
#include "process/ChildLimit.h"
#include "process/ChildOutputs.h"
#include "process/LaunchedChild.h"

#include <algorithm>
#include <chrono>
#include <iterator>
#include <memory>
#include <optional>
#include <ranges>
#include <signal.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

namespace vellmark {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds terminationStep{50};

/// The read end of a pipe that holds `text` and has no writer any more; closed for an empty text.
Descriptor filledPipe(const std::string& text) {
    if (text.empty()) {
        return {};
    }
    Pipe pipe = makePipe();
    if (writeWithoutSignal(pipe.writeEnd.get(), text) != static_cast<ssize_t>(text.size())) {
        throw std::system_error(std::make_error_code(std::errc::io_error), "pipe");
    }
    return std::move(pipe.readEnd);
}

/// The direct children of `child`, as soon as it has any; none if it ends first. Looks at growing
/// intervals, since an interpreter starts its program at once or much later.
std::vector<ProcessHandle> awaitDirectChildren(const LaunchedChild& child, ChildOutputs& outputs) {
    std::chrono::milliseconds distance{100};
    for (;; distance *= 2) {
        if (outputs.drainUntil(child.endDescriptor(), Clock::now() + distance)) {
            return {};
        }
        if (auto children = directChildHandles(child.pid()); !children.empty()) {
            return children;
        }
    }
}

bool isAnyAlive(const std::vector<ProcessHandle>& processes) {
    return std::ranges::any_of(processes, &ProcessHandle::isAlive);
}

/// A child that is being stopped at termination. Somebody else may collect it meanwhile; after that
/// its number means nothing.
class StoppedChild {
public:
    explicit StoppedChild(pid_t pid)
        : pid_(pid), handle_(std::make_shared<std::optional<ProcessHandle>>(
                         ProcessHandle::openChild(pid, getpid()))),
          family_(pid, [handle = handle_](pid_t target, int number) {
              // Another child of ours may have the number by now.
              if (*handle && !(*handle)->signal(0)) {
                  return false;
              }
              // The registry also works without a handle, and reaches the whole group.
              return RunningChildren::signal(target, number) ||
                     (target > 0 && *handle && (*handle)->signal(number));
          }) {
        family_.tell();
        for (const ProcessHandle& process : family_.told()) {
            RunningChildren::attach(pid, process);
        }
    }

    bool isAlive() const {
        return *handle_ ? (*handle_)->isAlive() : RunningChildren::isRunning(pid_);
    }
    bool isFamilyAlive() const { return isAlive() || isAnyAlive(family_.told()); }
    void kill() { family_.kill(); }

private:
    pid_t pid_;
    std::shared_ptr<std::optional<ProcessHandle>> handle_;
    ProcessFamily family_;
};

int stopAll(std::span<const pid_t> pids, const std::vector<ProcessHandle>& told, Seconds grace) {
    std::vector<StoppedChild> children;
    for (const pid_t pid : pids) {
        children.emplace_back(pid);
    }
    const auto isAnythingAlive = [&] {
        return isAnyAlive(told) || std::ranges::any_of(children, &StoppedChild::isFamilyAlive);
    };
    const auto start = Clock::now();
    while (Seconds(Clock::now() - start) < grace && isAnythingAlive()) {
        std::this_thread::sleep_for(terminationStep);
    }
    int killed = 0;
    for (StoppedChild& child : children) {
        killed += child.isAlive() ? 1 : 0;
        child.kill();
    }
    for (const ProcessHandle& process : told) {
        process.signal(SIGKILL);
    }
    for (const pid_t pid : pids) {
        RunningChildren::remove(pid);
    }
    return killed;
}

/// Collects a child that has ended, or leaves that to the reaper while any process that was told to
/// stop with it, before or just now, is still alive.
void letGo(LaunchedChild child, std::unique_ptr<ChildLimit> limit,
           std::vector<ProcessHandle> leftBehind) {
    if (!leftBehind.empty()) {
        limit->stopLeftBehind(std::move(leftBehind));
    }
    if (limit->hasSurvivors()) {
        BackgroundReaper::adopt(std::move(child), std::move(limit));
    } else {
        limit->cancel();
        child.collect();
    }
}

} // namespace

BoundedProcessResult BoundedProcess::run(const ChildConfiguration& configuration, Seconds timeout,
                                         Seconds killGrace) {
    BoundedProcessResult result;
    ChildOutputs outputs(configuration);
    Descriptor input = filledPipe(configuration.standardInput);
    ChildStreams streams = outputs.streams();
    streams.input = input.get();
    const auto launchStart = Clock::now();
    LaunchedChild child(configuration, streams);
    result.launch = Clock::now() - launchStart;
    input.reset();
    outputs.closeChildEnds();

    auto limit = std::make_unique<ChildLimit>(child.pid(), timeout, killGrace);
    outputs.onCapped = [&limit] { limit->stop(); };
    std::vector<ProcessHandle> directChildren;
    if (configuration.stopsSurvivingChildren) {
        directChildren = awaitDirectChildren(child, outputs);
    }
    for (const ProcessHandle& process : directChildren) {
        RunningChildren::attach(child.pid(), process);
    }
    outputs.drainUntil(child.endDescriptor());
    const ChildExit exit = child.awaitEnd();
    const auto end = Clock::now();
    result.timedOut = limit->hasTimedOut();
    outputs.onCapped = nullptr;
    letGo(std::move(child), std::move(limit), std::move(directChildren));
    outputs.drainUntil(end + readingAfterEnd);

    result.elapsed = end - launchStart;
    result.terminationStatus = exit.status;
    result.uncaughtSignal = exit.bySignal;
    result.outputCapped = outputs.isCapped();
    result.output = outputs.takeOutput();
    result.errorOutput = outputs.takeError();
    return result;
}

int BoundedProcess::terminateAll(std::span<const pid_t> pids, Seconds grace) {
    return pids.empty() ? 0 : stopAll(pids, {}, grace);
}

int terminateAllChildren(Seconds grace) {
    RunningChildren::close();
    // In this order, a child that is just being handed to the reaper is seen in one of the two.
    std::vector<pid_t> pids = RunningChildren::snapshot();
    std::ranges::copy(BackgroundReaper::snapshot(), std::back_inserter(pids));
    std::ranges::sort(pids);
    const auto repeated = std::ranges::unique(pids);
    pids.erase(repeated.begin(), repeated.end());
    return stopAll(pids, ChildLimit::takeTold(), grace);
}

} // namespace vellmark
