#include "platform/linux/OpenBus.h"

#include <sdbus-c++/Error.h>

#include <future>
#include <poll.h>
#include <system_error>
#include <thread>

namespace vellmark {
namespace {

using Connection = std::unique_ptr<sdbus::IConnection>;

Connection connect(MessageBus which) {
    try {
        Connection connection = which == MessageBus::session ? sdbus::createSessionBusConnection()
                                                             : sdbus::createSystemBusConnection();
        connection->setMethodCallTimeout(busAnswerLimit);
        return connection;
    } catch (const sdbus::Error&) {
        return nullptr;
    }
}

bool hasUnsentMessages(const sdbus::IConnection& connection) {
    try {
        return (connection.getEventLoopPollData().events & POLLOUT) != 0;
    } catch (const sdbus::Error&) {
        return false; // The bus has gone.
    }
}

} // namespace

// The library waits up to a minute and a half for a bus to let it in, and cannot be told to wait
// less. So the waiting is done on a thread that is left behind if it takes too long; it ends when
// the library gives up, or with the program.
Connection openBus(MessageBus which) {
    try {
        std::packaged_task<Connection()> task([which] { return connect(which); });
        auto connection = task.get_future();
        std::thread(std::move(task)).detach();
        if (connection.wait_for(busAnswerLimit) == std::future_status::ready) {
            return connection.get();
        }
    } catch (const std::system_error&) {
        // No thread could be started.
    }
    return nullptr;
}

// The library waits until everything is sent; a thread that may be left behind does that.
void closeBus(Connection connection) {
    if (!connection || !hasUnsentMessages(*connection)) {
        return;
    }
    try {
        std::thread([unsent = std::move(connection)] {}).detach();
    } catch (const std::system_error&) {
        // No thread could be started.
    }
}

} // namespace vellmark
