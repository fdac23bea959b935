// With a session bus the right is the ownership of a name, and a later launch calls "Activate" of
// the freedesktop.org interface for applications, or "ActivateAction" for the popover. Without a
// bus that answers it is a lock on a file, and a later launch knocks at a socket beside it; a
// letter tells what it asks for.

#include "platform/SingleInstance.h"

#include "platform/Descriptor.h"
#include "platform/PrivateDirectory.h"
#include "platform/RegularFile.h"
#include "platform/linux/BusConnection.h"

#include <sdbus-c++/sdbus-c++.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <map>
#include <optional>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>
#include <vector>

namespace vellmark {
namespace {

constexpr auto applicationInterface = "org.freedesktop.Application";
constexpr auto popoverAction = "show-popover";
constexpr char popoverLetter = 'p';
/// A launch that knocks sends its letter at once.
constexpr timeval letterLimit{.tv_sec = 0, .tv_usec = 200'000};
constexpr auto nameIsTaken = "org.freedesktop.DBus.Error.FileExists";
using PlatformData = std::map<std::string, sdbus::Variant>;

std::string objectPath(const std::string& identifier) {
    std::string path = "/" + identifier;
    std::replace(path.begin(), path.end(), '.', '/');
    return path;
}

std::function<void()> popoverRequest(const SingleInstanceRequest& request) {
    return request.onShowPopover ? request.onShowPopover : request.onShow;
}

class BusName final : public SingleInstance {
public:
    BusName(std::shared_ptr<BusConnection> connection, const SingleInstanceRequest& request)
        : connection_(std::move(connection)),
          application_(sdbus::createObject(connection_->bus(), objectPath(request.identifier))) {
        const auto show = request.onShow;
        application_->registerMethod("Activate")
            .onInterface(applicationInterface)
            .implementedAs([show](const PlatformData&) { show(); });
        application_->registerMethod("Open")
            .onInterface(applicationInterface)
            .implementedAs(
                [show](const std::vector<std::string>&, const PlatformData&) { show(); });
        application_->registerMethod("ActivateAction")
            .onInterface(applicationInterface)
            .implementedAs(
                [show, popover = popoverRequest(request)](
                    const std::string& action, const std::vector<sdbus::Variant>&,
                    const PlatformData&) { action == popoverAction ? popover() : show(); });
        application_->finishRegistration();
    }

private:
    std::shared_ptr<BusConnection> connection_;
    std::unique_ptr<sdbus::IObject> application_;
};

void activateOwner(BusConnection& connection, const SingleInstanceRequest& request) {
    try {
        const std::string path = objectPath(request.identifier);
        auto owner = sdbus::createProxy(connection.bus(), request.identifier, path);
        if (request.asksForPopover) {
            owner->callMethod("ActivateAction")
                .onInterface(applicationInterface)
                .withArguments(std::string(popoverAction), std::vector<sdbus::Variant>(),
                               PlatformData());
        } else {
            owner->callMethod("Activate")
                .onInterface(applicationInterface)
                .withArguments(PlatformData());
        }
    } catch (const sdbus::Error&) {
        // It runs, but is too busy to answer. Two instances would be worse than a hidden one.
    }
}

/// Whether the right is held by this launch (its instance), by another (null), or the bus has
/// stopped answering (absent).
std::optional<std::unique_ptr<SingleInstance>>
claimBusName(const std::shared_ptr<BusConnection>& connection,
             const SingleInstanceRequest& request) {
    try {
        // The object is there before the name, so that whoever finds the name can call it.
        auto instance = std::make_unique<BusName>(connection, request);
        connection->bus().requestName(request.identifier);
        connection->process();
        return instance;
    } catch (const sdbus::Error& error) {
        if (error.getName() != nameIsTaken) {
            return std::nullopt;
        }
    }
    activateOwner(*connection, request);
    return nullptr;
}

/// False when the path is too long for a socket.
bool setAddress(sockaddr_un& address, const std::filesystem::path& path) {
    address.sun_family = AF_UNIX;
    if (path.native().size() >= sizeof(address.sun_path)) {
        return false;
    }
    std::strcpy(address.sun_path, path.c_str());
    return true;
}

Descriptor newSocket() {
    return Descriptor(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
}

class LockedFile final : public SingleInstance {
public:
    LockedFile(Descriptor lock, std::filesystem::path socketPath, DescriptorWatcher& loop,
               const SingleInstanceRequest& request)
        : lock_(std::move(lock)), socketPath_(std::move(socketPath)), onShow_(request.onShow),
          onShowPopover_(popoverRequest(request)) {
        listen(loop);
    }
    ~LockedFile() override { ::unlink(socketPath_.c_str()); }

private:
    /// Without the socket the instance is still the only one; it just cannot be asked.
    void listen(DescriptorWatcher& loop) {
        sockaddr_un address{};
        Descriptor socket = newSocket();
        if (!socket.isOpen() || !setAddress(address, socketPath_)) {
            return;
        }
        ::unlink(socketPath_.c_str());
        if (::bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) !=
                0 ||
            ::listen(socket.get(), 4) != 0) {
            return;
        }
        socket_ = std::move(socket);
        watch_ = loop.watch(socket_.get(), [this] { answer(); });
    }

    void answer() {
        while (true) {
            const Descriptor knock(::accept4(socket_.get(), nullptr, nullptr, SOCK_CLOEXEC));
            if (!knock.isOpen()) {
                return;
            }
            ::setsockopt(knock.get(), SOL_SOCKET, SO_RCVTIMEO, &letterLimit, sizeof(letterLimit));
            char letter = 0;
            const bool isForPopover =
                ::recv(knock.get(), &letter, 1, 0) == 1 && letter == popoverLetter;
            isForPopover ? onShowPopover_() : onShow_();
        }
    }

    Descriptor lock_;
    Descriptor socket_;
    std::filesystem::path socketPath_;
    std::function<void()> onShow_;
    std::function<void()> onShowPopover_;
    std::unique_ptr<DescriptorWatch> watch_;
};

void knock(const std::filesystem::path& socketPath, bool asksForPopover) {
    sockaddr_un address{};
    const Descriptor socket = newSocket();
    if (socket.isOpen() && setAddress(address, socketPath) &&
        ::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) ==
            0 &&
        asksForPopover) {
        (void)::send(socket.get(), &popoverLetter, 1, MSG_NOSIGNAL);
    }
}

/// The right, held without a lock because the file system has none. Starting is better than
/// refusing to.
class Unguarded final : public SingleInstance {};

std::unique_ptr<SingleInstance> claimLockedFile(DescriptorWatcher& loop,
                                                const SingleInstanceRequest& request) {
    std::error_code ignored;
    makePrivateDirectory(request.directory);
    const auto socketPath = request.directory / "instance.socket";
    Descriptor lock =
        openRegularFile(request.directory / "instance.lock", O_RDWR | O_CREAT, ignored);
    if (!lock.isOpen()) {
        return std::make_unique<Unguarded>();
    }
    if (::flock(lock.get(), LOCK_EX | LOCK_NB) == 0) {
        return std::make_unique<LockedFile>(std::move(lock), socketPath, loop, request);
    }
    if (errno != EWOULDBLOCK) {
        return std::make_unique<Unguarded>();
    }
    knock(socketPath, request.asksForPopover);
    return nullptr;
}

} // namespace

std::unique_ptr<SingleInstance> claimSingleInstance(DescriptorWatcher& loop,
                                                    SingleInstanceRequest request) {
    if (const auto connection = BusConnection::session(loop)) {
        if (auto claimed = claimBusName(connection, request)) {
            return std::move(*claimed);
        }
    }
    return claimLockedFile(loop, request);
}

} // namespace vellmark
