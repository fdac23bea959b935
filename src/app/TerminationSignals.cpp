#include "app/TerminationSignals.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace vellmark {
namespace {

constexpr std::array watchedSignals{SIGTERM, SIGINT, SIGHUP};

/// Written by the handler, which may do nothing more than that; read by the event loop.
std::array<int, 2> channel{-1, -1};

void noteSignal(int /*signal*/) {
    const int savedError = errno;
    (void)!::write(channel[1], "!", 1);
    errno = savedError;
}

void setHandler(void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    for (const int signal : watchedSignals)
        ::sigaction(signal, &action, nullptr);
}

bool openChannel() {
    if (::pipe(channel.data()) != 0)
        return false;
    for (const int end : channel) {
        ::fcntl(end, F_SETFD, FD_CLOEXEC);
        ::fcntl(end, F_SETFL, O_NONBLOCK);
    }
    return true;
}

} // namespace

TerminationSignals::TerminationSignals(DescriptorWatcher& loop, std::function<void()> onSignal) {
    if (!openChannel())
        return;
    watch_ = loop.watch(channel[0], [onSignal = std::move(onSignal)] {
        std::array<char, 16> noted;
        while (::read(channel[0], noted.data(), noted.size()) > 0) {
        }
        onSignal();
    });
    setHandler(noteSignal);
}

TerminationSignals::~TerminationSignals() {
    setHandler(SIG_DFL);
    watch_.reset();
    for (int& end : channel) {
        if (end >= 0)
            ::close(end);
        end = -1;
    }
}

} // namespace vellmark
