// Outlives the program that starts it: waits for the end of its standard input, which is the
// program's end, and then ends the children that the program has left behind.

#include "probes/ChildWatcher.h"
#include "watcher/WatchedChildren.h"

#include <cerrno>
#include <csignal>
#include <unistd.h>

namespace {

using namespace vellmark;

/// The rest of the two seconds is for starting late on a busy machine.
constexpr Seconds grace{1.0};

/// False at the end of the input.
bool readMessage(ChildWatcherMessage& message) {
    auto* const bytes = reinterpret_cast<char*>(&message);
    std::size_t count = 0;
    while (count < sizeof(message)) {
        const ssize_t result = ::read(STDIN_FILENO, bytes + count, sizeof(message) - count);
        if (result < 0 && errno == EINTR)
            continue;
        if (result <= 0)
            return false;
        count += static_cast<std::size_t>(result);
    }
    return true;
}

} // namespace

int main() {
    const pid_t program = ::getppid();
    // What ends the program's session or terminal must not end this process before it has worked.
    ::setsid();
    for (const int signal : {SIGHUP, SIGINT, SIGTERM, SIGPIPE})
        ::signal(signal, SIG_IGN);
    (void)::chdir("/");

    WatchedChildren children(program);
    ChildWatcherMessage message;
    while (readMessage(message)) {
        if (message.event == ChildWatcherMessage::Event::started)
            children.started(message.pid);
        else
            children.ended(message.pid);
    }
    children.endAll(grace);
    return 0;
}
