#include "probes/BoundedProcess.h"

#include "platform/ProcessTable.h"
#include "probes/BackgroundReaper.h"
#include "probes/ChildLimit.h"
#include "probes/LaunchedChild.h"
#include "probes/OutputCapture.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <iterator>
#include <optional>
#include <poll.h>
#include <signal.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

namespace vellmark {
namespace {

using Clock = std::chrono::steady_clock;

/// For how long a pipe is read that outlives the child.
constexpr std::chrono::milliseconds readingAfterEnd{100};
constexpr std::chrono::milliseconds terminationStep{50};

/// Where a child's output goes and what of it is captured.
class Outputs {
public:
    explicit Outputs(const ChildConfiguration& configuration) {
        output_ = prepare(configuration.standardOutput, streams_.output);
        if (configuration.mergesStandardError)
            streams_.error = streams_.output;
        else
            error_ = prepare(configuration.standardError, streams_.error);
    }

    const ChildStreams& streams() const { return streams_; }

    void closeChildEnds() {
        forEach([](OutputCapture& capture) { capture.closeChildEnd(); });
    }

    /// Reads until `end` is readable, but not beyond `deadline`. True when it is readable.
    bool drainUntil(int end, std::optional<Clock::time_point> deadline = std::nullopt) {
        do {
            auto events = awaited(end);
            if (::poll(events.data(), events.size(), deadline ? pollTimeout(*deadline) : -1) < 0)
                continue;
            drainReady(events);
            if (events[2].revents != 0)
                return true;
        } while (!deadline || Clock::now() < *deadline);
        return false;
    }

    /// Reads to the end of the streams, but not beyond `deadline`.
    void drainUntil(Clock::time_point deadline) {
        while (!haveEnded() && Clock::now() < deadline) {
            auto events = awaited(-1);
            ::poll(events.data(), events.size(), pollTimeout(deadline));
            drainReady(events);
        }
    }

    std::string takeOutput() { return output_ ? output_->takeText() : std::string(); }
    std::string takeError() { return error_ ? error_->takeText() : std::string(); }

private:
    using Events = std::array<pollfd, 3>;

    static int pollTimeout(Clock::time_point deadline) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
        return std::max(static_cast<int>(left.count()), 0);
    }

    static std::optional<OutputCapture> prepare(const ChildOutput& wanted, int& stream) {
        if (wanted.kind == ChildOutput::Kind::descriptor)
            stream = wanted.descriptor;
        if (wanted.kind != ChildOutput::Kind::capture)
            return std::nullopt;
        std::optional<OutputCapture> capture(std::in_place, wanted.limit,
                                             OutputCapture::Part::beginning);
        stream = capture->childEnd();
        return capture;
    }

    template<typename Action>
    void forEach(Action action) {
        for (auto* const capture : {&output_, &error_})
            if (*capture)
                action(**capture);
    }

    bool haveEnded() {
        bool ended = true;
        forEach([&ended](const OutputCapture& capture) { ended = ended && capture.hasEnded(); });
        return ended;
    }

    Events awaited(int end) const {
        const auto descriptor = [](const std::optional<OutputCapture>& capture) {
            return capture ? capture->descriptor() : -1;
        };
        return {pollfd{descriptor(output_), POLLIN, 0}, pollfd{descriptor(error_), POLLIN, 0},
                pollfd{end, POLLIN, 0}};
    }

    void drainReady(const Events& events) {
        if (events[0].revents != 0)
            output_->drain();
        if (events[1].revents != 0)
            error_->drain();
    }

    ChildStreams streams_;
    std::optional<OutputCapture> output_;
    std::optional<OutputCapture> error_;
};

/// The direct children of `child`, as soon as it has some; none when it ends before. Looks at
/// growing distances, since an interpreter starts its program at once or much later.
std::vector<ProcessHandle> awaitDirectChildren(const LaunchedChild& child, Outputs& outputs) {
    std::chrono::milliseconds distance{100};
    for (;; distance *= 2) {
        if (outputs.drainUntil(child.endDescriptor(), Clock::now() + distance))
            return {};
        if (auto children = directChildHandles(child.pid()); !children.empty())
            return children;
    }
}

/// A child that is stopped at termination, and its direct children.
struct Family {
    /// Absent when the child has been collected; its number means nothing any more then.
    std::optional<ProcessHandle> child;
    std::vector<ProcessHandle> directChildren;

    explicit Family(pid_t pid) : child(ProcessHandle::openChild(pid, getpid())) {
        if (!child)
            return;
        directChildren = signalled(child->directChildren(), SIGTERM);
        child->signal(SIGTERM);
    }

    bool isChildAlive() const { return child && child->isAlive(); }

    void kill() {
        if (child)
            std::ranges::move(child->directChildren(), std::back_inserter(directChildren));
        for (const ProcessHandle& process : directChildren)
            process.signal(SIGKILL);
        if (child)
            child->signal(SIGKILL);
    }
};

bool isAnyAlive(const std::vector<ProcessHandle>& processes) {
    return std::ranges::any_of(processes, &ProcessHandle::isAlive);
}

int stopAll(std::span<const pid_t> pids, const std::vector<ProcessHandle>& told, Seconds grace) {
    std::vector<Family> families;
    for (const pid_t pid : pids)
        families.emplace_back(pid);
    const auto isAnythingAlive = [&] {
        return isAnyAlive(told) || std::ranges::any_of(families, [](const Family& family) {
                   return family.isChildAlive() || isAnyAlive(family.directChildren);
               });
    };
    const auto start = Clock::now();
    while (Seconds(Clock::now() - start) < grace && isAnythingAlive())
        std::this_thread::sleep_for(terminationStep);
    int killed = 0;
    for (Family& family : families) {
        killed += family.isChildAlive() ? 1 : 0;
        family.kill();
    }
    for (const ProcessHandle& process : told)
        process.signal(SIGKILL);
    for (const pid_t pid : pids)
        RunningChildren::remove(pid);
    return killed;
}

} // namespace

BoundedProcessResult BoundedProcess::run(const ChildConfiguration& configuration, Seconds timeout,
                                         Seconds killGrace) {
    BoundedProcessResult result;
    Outputs outputs(configuration);
    const auto launchStart = Clock::now();
    LaunchedChild child(configuration, outputs.streams());
    result.launch = Clock::now() - launchStart;
    outputs.closeChildEnds();

    ChildLimit limit(child.pid(), timeout, killGrace);
    std::vector<ProcessHandle> directChildren;
    if (configuration.stopsSurvivingChildren)
        directChildren = awaitDirectChildren(child, outputs);
    outputs.drainUntil(child.endDescriptor());
    result.timedOut = limit.cancel();
    const ChildExit exit = child.collect();
    if (!directChildren.empty())
        ChildLimit::stopSurvivors(std::move(directChildren), killGrace);
    const auto end = Clock::now();
    outputs.drainUntil(end + readingAfterEnd);

    result.elapsed = end - launchStart;
    result.terminationStatus = exit.status;
    result.uncaughtSignal = exit.bySignal;
    result.output = outputs.takeOutput();
    result.errorOutput = outputs.takeError();
    return result;
}

int BoundedProcess::terminateAll(std::span<const pid_t> pids, Seconds grace) {
    return pids.empty() ? 0 : stopAll(pids, {}, grace);
}

int terminateAllChildren(Seconds grace) {
    RunningChildren::close();
    // In this order a child that is just being left to the reaper is seen in one of the two.
    std::vector<pid_t> pids = RunningChildren::snapshot();
    std::ranges::copy(BackgroundReaper::snapshot(), std::back_inserter(pids));
    std::ranges::sort(pids);
    const auto repeated = std::ranges::unique(pids);
    pids.erase(repeated.begin(), repeated.end());
    return stopAll(pids, ChildLimit::takeTold(), grace);
}

} // namespace vellmark
