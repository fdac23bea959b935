// Outlives the program that starts it: waits for the end of its standard input, which is the
// program's end, and then ends the children that the program has left behind.

#include "process/ChildWatcher.h"
#include "process/watcher/WatchedChildren.h"

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
        if (result < 0 && errno == EINTR) {
            continue;
        }
        if (result <= 0) {
            return false;
        }
        count += static_cast<std::size_t>(result);
    }
    return true;
}

} // namespace

int main() {
    // A signal that ends the program's group must not end this process before it has done its work.
    for (const int signal : {SIGHUP, SIGINT, SIGTERM, SIGPIPE}) {
        ::signal(signal, SIG_IGN);
    }
    (void)::chdir("/");

    WatchedChildren children;
    ChildWatcherMessage message;
    while (readMessage(message)) {
        using Event = ChildWatcherMessage::Event;
        if (message.event == Event::started) {
            children.started(message.pid, message.at);
        } else if (message.event == Event::attached) {
            children.attached(message.pid, message.at);
        } else {
            children.ended(message.pid);
        }
    }
    children.endAll(grace);
    return 0;
}
