#include "platform/linux/OpenBus.h"

#include <sdbus-c++/Error.h>

#include <cstdlib>
#include <future>
#include <poll.h>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>
#include <utility>

namespace vellmark {
namespace {

using Connection = std::unique_ptr<sdbus::IConnection>;

constexpr auto addressVariable = "DBUS_SESSION_BUS_ADDRESS";
/// An address at which no library finds anything.
constexpr auto noBus = "disabled:";

std::string sessionBusAddress() {
    if (const char* const address = std::getenv(addressVariable)) {
        return address;
    }
    const char* const runtime = std::getenv("XDG_RUNTIME_DIR");
    return runtime != nullptr ? "unix:path=" + std::string(runtime) + "/bus" : std::string();
}

/// Empty while none is left out.
std::string& leftOutAddress() {
    static std::string address;
    return address;
}

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

void leaveOutSessionBus() {
    leftOutAddress() = sessionBusAddress();
    ::setenv(addressVariable, noBus, 1);
}

void takeSessionBusBack() {
    if (!leftOutAddress().empty()) {
        ::setenv(addressVariable, std::exchange(leftOutAddress(), {}).c_str(), 1);
    }
}

std::filesystem::path sessionBusSocket() {
    constexpr std::string_view kind = "unix:path=";
    const std::string address = leftOutAddress().empty() ? sessionBusAddress() : leftOutAddress();
    if (!address.starts_with(kind)) {
        return {};
    }
    // What follows is the server's identifier, or another address.
    const std::string path = address.substr(kind.size(), address.find_first_of(",;") - kind.size());
    // Anything but the commonest characters is written as "%" and two digits.
    return path.find('%') == std::string::npos ? path : std::string();
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
