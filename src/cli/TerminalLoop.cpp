#include "cli/TerminalLoop.h"

#include <climits>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cmath>
#include <fcntl.h>
#include <poll.h>
#include <system_error>
#include <unistd.h>

namespace vellmark {
namespace {

constexpr std::array handledSignals{SIGINT, SIGTERM, SIGHUP, SIGWINCH};

/// Where the signal handler writes; -1 while there is no loop.
std::atomic<int> signalPipe{-1};
static_assert(std::atomic<int>::is_always_lock_free, "used in a signal handler");

void forwardSignal(int signal) {
    const int savedErrno = errno;
    const auto byte = static_cast<char>(signal);
    // A full pipe holds signals enough; this one may be lost.
    [[maybe_unused]] const ssize_t written = write(signalPipe.load(), &byte, 1);
    errno = savedErrno;
}

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

TerminalLoop::TerminalLoop() {
    std::array<int, 2> pipeEnds{};
    if (pipe(pipeEnds.data()) != 0)
        throw std::system_error(errno, std::generic_category(), "pipe");
    wakeRead_ = pipeEnds[0];
    wakeWrite_ = pipeEnds[1];
    makeNonblockingPrivate(wakeRead_);
    makeNonblockingPrivate(wakeWrite_);
    installSignalHandlers();
}

TerminalLoop::~TerminalLoop() {
    for (const auto& [signal, action] : savedActions_)
        sigaction(signal, &action, nullptr);
    signalPipe.store(-1);
    close(wakeRead_);
    close(wakeWrite_);
}

void TerminalLoop::installSignalHandlers() {
    signalPipe.store(wakeWrite_);
    for (const int signal : handledSignals) {
        struct sigaction saved {};
        sigaction(signal, nullptr, &saved);
        // A signal that the caller ignores stays ignored: "nohup vellmark watch" is to survive.
        if (signal != SIGWINCH && saved.sa_handler == SIG_IGN)
            continue;
        struct sigaction action {};
        action.sa_handler = forwardSignal;
        action.sa_flags = SA_RESTART;
        sigemptyset(&action.sa_mask);
        sigaction(signal, &action, nullptr);
        savedActions_.emplace_back(signal, saved);
    }
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
    if (stopped_)
        return;
    stopped_ = true;
    status_ = status;
}

int TerminalLoop::pollTimeout() const {
    if (timers_.empty())
        return -1;
    const Seconds left = timers_.begin()->first.first - Clock::now();
    // Rounded up, so that the timer is due on waking.
    return static_cast<int>(std::clamp(std::ceil(left.count() * 1000), 0.0, double{INT_MAX}));
}

void TerminalLoop::waitForEvents() {
    std::vector<pollfd> descriptors{{.fd = wakeRead_, .events = POLLIN, .revents = 0}};
    std::vector<int> keys;
    for (const auto& [key, watched] : watched_) {
        descriptors.push_back({.fd = watched.descriptor, .events = POLLIN, .revents = 0});
        keys.push_back(key);
    }
    {
        const std::lock_guard lock(mutex_);
        if (!posted_.empty())
            return;
    }
    if (poll(descriptors.data(), static_cast<nfds_t>(descriptors.size()), pollTimeout()) <= 0)
        return;
    if (descriptors.front().revents != 0)
        drainWakePipe();
    for (std::size_t index = 0; index < keys.size(); ++index) {
        if (descriptors[index + 1].revents == 0)
            continue;
        // A callback may have ended the watch of another.
        if (const auto found = watched_.find(keys[index]); found != watched_.end()) {
            const auto callback = found->second.onReadable;
            callback();
        }
    }
}

void TerminalLoop::drainWakePipe() {
    std::array<char, 64> bytes{};
    ssize_t count = 0;
    while ((count = read(wakeRead_, bytes.data(), bytes.size())) > 0) {
        for (const char byte : std::string_view(bytes.data(), static_cast<std::size_t>(count))) {
            if (byte != 0)
                handleSignal(byte);
        }
    }
}

void TerminalLoop::handleSignal(int signal) {
    if (signal == SIGWINCH) {
        if (onResize_)
            onResize_();
        return;
    }
    endingSignal_ = signal;
    stop(128 + signal);
}

void TerminalLoop::runPostedTasks() {
    std::vector<Task> tasks;
    {
        const std::lock_guard lock(mutex_);
        tasks.swap(posted_);
    }
    for (const Task& task : tasks)
        task();
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
