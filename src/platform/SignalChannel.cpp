#include "platform/SignalChannel.h"

#include "platform/ChildPipes.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <fcntl.h>
#include <string_view>
#include <unistd.h>

namespace vellmark {
namespace {

/// Where the signal handler writes; -1 while there is no channel.
std::atomic<int> channel{-1};
static_assert(std::atomic<int>::is_always_lock_free, "used in a signal handler");

void forwardSignal(int signal) {
    const int savedErrno = errno;
    const auto byte = static_cast<char>(signal);
    // A full pipe holds signals enough; this one may be lost.
    [[maybe_unused]] const ssize_t written = ::write(channel.load(), &byte, 1);
    errno = savedErrno;
}

} // namespace

SignalChannel::SignalChannel(const std::vector<int>& ending, const std::vector<int>& others) {
    Pipe pipe = makePipe();
    readEnd_ = std::move(pipe.readEnd);
    writeEnd_ = std::move(pipe.writeEnd);
    for (const Descriptor* const end : {&readEnd_, &writeEnd_}) {
        ::fcntl(end->get(), F_SETFL, O_NONBLOCK);
    }
    channel.store(writeEnd_.get());
    for (const int signal : ending) {
        handleUnlessIgnored(signal);
    }
    for (const int signal : others) {
        handle(signal);
    }
}

SignalChannel::~SignalChannel() {
    for (const auto& [signal, action] : savedActions_) {
        ::sigaction(signal, &action, nullptr);
    }
    channel.store(-1);
}

void SignalChannel::add(int signal) {
    if (signal == SIGCONT) {
        handle(signal); // a program is continued even if it ignores this
    } else {
        handleUnlessIgnored(signal);
    }
}

void SignalChannel::handleUnlessIgnored(int signal) {
    struct sigaction found {};
    ::sigaction(signal, nullptr, &found);
    if (found.sa_handler != SIG_IGN) {
        handle(signal);
    }
}

void SignalChannel::handle(int signal) {
    struct sigaction action {};
    struct sigaction saved {};
    action.sa_handler = forwardSignal;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    ::sigaction(signal, &action, &saved);
    savedActions_.emplace_back(signal, saved);
}

std::vector<int> SignalChannel::take() {
    std::vector<int> signals;
    std::array<char, 64> bytes{};
    ssize_t count = 0;
    while ((count = ::read(readEnd_.get(), bytes.data(), bytes.size())) > 0) {
        for (const char byte : std::string_view(bytes.data(), static_cast<std::size_t>(count))) {
            signals.push_back(byte);
        }
    }
    return signals;
}

void ignoreWriteSignals() {
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

} // namespace vellmark
