#include "cli/TerminalLoop.h"

#include <climits>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <system_error>
#include <unistd.h>

namespace vellmark {
namespace {

void makeNonblockingPrivate(int descriptor) {
    fcntl(descriptor, F_SETFL, fcntl(descriptor, F_GETFL) | O_NONBLOCK);
    fcntl(descriptor, F_SETFD, FD_CLOEXEC);
}

} // namespace

/// Ends the watch when destroyed; may outlive neither the loop nor its run.
class TerminalLoop::Watch final : public DescriptorWatch {
public:
    Watch(TerminalLoop& loop, int key) : loop_(loop), key_(key) {}
    ~Watch() override { loop_.watched_.erase(key_); }

private:
    TerminalLoop& loop_;
    int key_;
};

TerminalLoop::TerminalLoop() : signals_({SIGINT, SIGTERM, SIGHUP, SIGQUIT}, {SIGWINCH}) {
    std::array<int, 2> pipeEnds{};
    if (pipe(pipeEnds.data()) != 0) {
        throw std::system_error(errno, std::generic_category(), "pipe");
    }
    wakeRead_ = pipeEnds[0];
    wakeWrite_ = pipeEnds[1];
    makeNonblockingPrivate(wakeRead_);
    makeNonblockingPrivate(wakeWrite_);
}

TerminalLoop::~TerminalLoop() {
    close(wakeRead_);
    close(wakeWrite_);
}

void TerminalLoop::onSuspension(std::function<void()> before, std::function<void()> after) {
    beforeSuspension_ = std::move(before);
    afterSuspension_ = std::move(after);
    signals_.add(SIGTSTP);
    signals_.add(SIGCONT);
}

void TerminalLoop::suspend() {
    struct sigaction forwarding {};
    sigaction(SIGTSTP, nullptr, &forwarding);
    if (forwarding.sa_handler == SIG_IGN) {
        return; // the caller has nobody who could have it go on
    }
    beforeSuspension_();
    struct sigaction stopping {};
    stopping.sa_handler = SIG_DFL;
    sigaction(SIGTSTP, &stopping, nullptr);
    // Returns when the program has gone on; at once in a session without a shell.
    raise(SIGTSTP);
    sigaction(SIGTSTP, &forwarding, nullptr);
    afterSuspension_();
}

int TerminalLoop::run() {
    while (!stopped_) {
        waitForEvents();
        runPostedTasks();
        runDueTimers();
    }
    stopped_ = false;
    return status_;
}

void TerminalLoop::stop(int status) {
    if (stopped_) {
        return;
    }
    stopped_ = true;
    status_ = status;
}

int TerminalLoop::pollTimeout() const {
    if (timers_.empty()) {
        return -1;
    }
    const Seconds left = timers_.begin()->first.first - Clock::now();
    // Rounded up, so that the timer is due on waking.
    return static_cast<int>(std::clamp(std::ceil(left.count() * 1000), 0.0, double{INT_MAX}));
}

void TerminalLoop::waitForEvents() {
    std::vector<pollfd> descriptors;
    for (const int own : {wakeRead_, signals_.descriptor()}) {
        descriptors.push_back({.fd = own, .events = POLLIN, .revents = 0});
    }
    const std::size_t ownCount = descriptors.size();
    std::vector<int> keys;
    for (const auto& [key, watched] : watched_) {
        descriptors.push_back({.fd = watched.descriptor, .events = POLLIN, .revents = 0});
        keys.push_back(key);
    }
    int timeout = pollTimeout();
    {
        // Signals are looked at all the same: what Ctrl-C has done to a child may be posted
        // already.
        const std::lock_guard lock(mutex_);
        if (!posted_.empty()) {
            timeout = 0;
        }
    }
    if (poll(descriptors.data(), static_cast<nfds_t>(descriptors.size()), timeout) <= 0) {
        return;
    }
    if (descriptors[0].revents != 0) {
        drainWakePipe();
    }
    if (descriptors[1].revents != 0) {
        handleSignals();
    }
    for (std::size_t index = 0; index < keys.size(); ++index) {
        if (descriptors[index + ownCount].revents == 0) {
            continue;
        }
        // A callback may have ended the watch of another.
        if (const auto found = watched_.find(keys[index]); found != watched_.end()) {
            const auto callback = found->second.onReadable;
            callback();
        }
    }
}

void TerminalLoop::drainWakePipe() {
    std::array<char, 64> bytes{};
    while (read(wakeRead_, bytes.data(), bytes.size()) > 0) {
    }
}

void TerminalLoop::handleSignals() {
    for (const int signal : signals_.take()) {
        if (signal == SIGTSTP) {
            suspend();
        } else if (signal == SIGCONT) {
            // Also after a stop that no program is asked about.
            afterSuspension_();
        } else if (signal != SIGWINCH) {
            endingSignal_ = signal;
            stop(128 + signal);
        } else if (onResize_) {
            onResize_();
        }
    }
}

void TerminalLoop::runPostedTasks() {
    std::vector<Task> tasks;
    {
        const std::lock_guard lock(mutex_);
        tasks.swap(posted_);
    }
    for (const Task& task : tasks) {
        task();
    }
}

void TerminalLoop::runDueTimers() {
    const auto now = Clock::now();
    while (!timers_.empty() && timers_.begin()->first.first <= now) {
        const auto entry = timers_.extract(timers_.begin());
        entry.mapped()();
    }
}

void TerminalLoop::wake() {
    const char byte = 0;
    // A full pipe wakes as well.
    [[maybe_unused]] const ssize_t written = write(wakeWrite_, &byte, 1);
}

void TerminalLoop::post(Task task) {
    {
        const std::lock_guard lock(mutex_);
        posted_.push_back(std::move(task));
    }
    wake();
}

MainExecutor::Timer TerminalLoop::postAfter(Seconds delay, Seconds /*tolerance*/, Task task) {
    const auto due =
        Clock::now() + std::chrono::duration_cast<Clock::duration>(std::max(delay, Seconds(0)));
    timers_.emplace(std::pair(due, ++lastTimer_), std::move(task));
    return lastTimer_;
}

void TerminalLoop::cancel(Timer timer) {
    std::erase_if(timers_, [timer](const auto& entry) { return entry.first.second == timer; });
}

std::unique_ptr<DescriptorWatch> TerminalLoop::watch(int descriptor,
                                                     std::function<void()> onReadable) {
    watched_.emplace(++lastWatch_, Watched{descriptor, std::move(onReadable)});
    return std::make_unique<Watch>(*this, lastWatch_);
}

} // namespace vellmark
