// With a session bus the right is the ownership of a name, and a later launch calls "Activate" of
// the freedesktop.org interface for applications, or "ActivateAction" for the popover. Without a
// bus that answers it is a lock on a file, and a later launch knocks at a socket beside it; a
// letter tells what it asks for, and behind it may stand the desktop's leave to take the keyboard.

#include "platform/SingleInstance.h"

#include "platform/Descriptor.h"
#include "platform/PrivateDirectory.h"
#include "platform/RegularFile.h"
#include "platform/linux/BusConnection.h"
#include "platform/linux/BusLibrary.h"
#include "platform/linux/SessionBusReturn.h"

#include <algorithm>
#include <array>
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
constexpr char windowLetter = 'w';
/// A launch that knocks sends its letter at once.
constexpr timeval letterLimit{.tv_sec = 0, .tv_usec = 200'000};
constexpr auto nameIsTaken = "org.freedesktop.DBus.Error.FileExists";
using PlatformData = std::map<std::string, sdbus::Variant>;
/// Names of the platform data in the Desktop Entry Specification; older ones know the second.
constexpr auto activationTokenData = "activation-token";
constexpr auto startupIdData = "desktop-startup-id";
/// Longer ones are none.
constexpr std::size_t longestToken = 512;

sdbus::ObjectPath objectPath(const std::string& identifier) {
    std::string path = "/" + identifier;
    std::replace(path.begin(), path.end(), '.', '/');
    return sdbus::ObjectPath(path);
}

PlatformData platformData(const SingleInstanceRequest& request) {
    PlatformData data;
    if (!request.activationToken.empty()) {
        for (const char* name : {activationTokenData, startupIdData}) {
            data.emplace(name, sdbus::Variant(request.activationToken));
        }
    }
    return data;
}

void takeToken(const SingleInstanceRequest& request, const std::string& token) {
    if (!token.empty() && token.size() <= longestToken && request.onActivationToken) {
        request.onActivationToken(token);
    }
}

void takeToken(const SingleInstanceRequest& request, const PlatformData& data) {
    for (const char* name : {activationTokenData, startupIdData}) {
        const auto found = data.find(name);
        if (found != data.end() && found->second.containsValueOfType<std::string>()) {
            takeToken(request, found->second.get<std::string>());
            return;
        }
    }
}

std::function<void()> popoverRequest(const SingleInstanceRequest& request) {
    return request.onShowPopover ? request.onShowPopover : request.onShow;
}

class BusName final : public SingleInstance {
public:
    BusName(std::shared_ptr<BusConnection> connection, const SingleInstanceRequest& request)
        : connection_(std::move(connection)),
          application_(sdbus::createObject(connection_->bus(), objectPath(request.identifier))) {
        bus::Interface interface(*application_, applicationInterface);
        interface.method("Activate", [request](const PlatformData& data) {
            takeToken(request, data);
            request.onShow();
        });
        interface.method("Open",
                         [request](const std::vector<std::string>&, const PlatformData& data) {
                             takeToken(request, data);
                             request.onShow();
                         });
        interface.method("ActivateAction",
                         [request](const std::string& action, const std::vector<sdbus::Variant>&,
                                   const PlatformData& data) {
                             takeToken(request, data);
                             action == popoverAction ? popoverRequest(request)() : request.onShow();
                         });
        interface.publish();
    }

private:
    std::shared_ptr<BusConnection> connection_;
    std::unique_ptr<sdbus::IObject> application_;
};

void activateOwner(BusConnection& connection, const SingleInstanceRequest& request) {
    try {
        auto owner = sdbus::createProxy(connection.bus(), bus::ServiceName(request.identifier),
                                        objectPath(request.identifier));
        if (request.asksForPopover) {
            owner->callMethod("ActivateAction")
                .onInterface(applicationInterface)
                .withArguments(std::string(popoverAction), std::vector<sdbus::Variant>(),
                               platformData(request));
        } else {
            owner->callMethod("Activate")
                .onInterface(applicationInterface)
                .withArguments(platformData(request));
        }
    } catch (const sdbus::Error&) {
        // It runs, but is too busy to answer. Two instances would be worse than a hidden one.
    }
}

/// Throws sdbus::Error, of which `nameIsTaken` is one.
std::unique_ptr<SingleInstance> nameOn(const std::shared_ptr<BusConnection>& connection,
                                       const SingleInstanceRequest& request) {
    // The object is there before the name, so that whoever finds the name can call it.
    auto instance = std::make_unique<BusName>(connection, request);
    connection->bus().requestName(bus::ServiceName(request.identifier));
    connection->process();
    return instance;
}

/// Whether the right is held by this launch (its instance), by another (null), or the bus has
/// stopped answering (absent).
std::optional<std::unique_ptr<SingleInstance>>
claimBusName(const std::shared_ptr<BusConnection>& connection,
             const SingleInstanceRequest& request) {
    try {
        return nameOn(connection, request);
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
        : lock_(std::move(lock)), socketPath_(std::move(socketPath)), request_(request) {
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
            std::array<char, 1 + longestToken> words{};
            const ssize_t size = ::recv(knock.get(), words.data(), words.size(), 0);
            if (size > 1) {
                takeToken(request_, std::string(words.data() + 1, std::size_t(size) - 1));
            }
            size > 0 && words.front() == popoverLetter ? popoverRequest(request_)()
                                                       : request_.onShow();
        }
    }

    Descriptor lock_;
    Descriptor socket_;
    std::filesystem::path socketPath_;
    SingleInstanceRequest request_;
    std::unique_ptr<DescriptorWatch> watch_;
};

void knock(const std::filesystem::path& socketPath, const SingleInstanceRequest& request) {
    sockaddr_un address{};
    const Descriptor socket = newSocket();
    if (socket.isOpen() && setAddress(address, socketPath) &&
        ::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) ==
            0) {
        const std::string words =
            (request.asksForPopover ? popoverLetter : windowLetter) + request.activationToken;
        (void)::send(socket.get(), words.data(), words.size(), MSG_NOSIGNAL);
    }
}

/// The right, held without a lock because the file system has none. Starting is better than
/// refusing to.
class Unguarded final : public SingleInstance {};

std::filesystem::path socketOf(const SingleInstanceRequest& request) {
    return request.directory / "instance.socket";
}

/// Null when another instance has it.
std::unique_ptr<SingleInstance> tryLockedFile(DescriptorWatcher& loop,
                                              const SingleInstanceRequest& request) {
    std::error_code ignored;
    makePrivateDirectory(request.directory);
    Descriptor lock =
        openRegularFile(request.directory / "instance.lock", O_RDWR | O_CREAT, ignored);
    if (!lock.isOpen()) {
        return std::make_unique<Unguarded>();
    }
    if (::flock(lock.get(), LOCK_EX | LOCK_NB) == 0) {
        return std::make_unique<LockedFile>(std::move(lock), socketOf(request), loop, request);
    }
    if (errno != EWOULDBLOCK) {
        return std::make_unique<Unguarded>();
    }
    return nullptr;
}

std::unique_ptr<SingleInstance> claimLockedFile(DescriptorWatcher& loop,
                                                const SingleInstanceRequest& request) {
    auto instance = tryLockedFile(loop, request);
    if (!instance) {
        knock(socketOf(request), request);
    }
    return instance;
}

/// The right as it is held now: by the name while there is a bus, else by the lock; by the other
/// too when a bus goes or comes, so that a later launch finds this one by what it has.
class HeldInstance final : public SingleInstance {
public:
    HeldInstance(DescriptorWatcher& loop, SingleInstanceRequest request,
                 std::unique_ptr<SingleInstance> claimed, bool isName)
        : loop_(loop), request_(std::move(request)), name_(isName ? std::move(claimed) : nullptr),
          lock_(std::move(claimed)),
          busReturn_(loop, {.onLoss = [this] { useLock(); },
                            .onReturn = [this](const auto& bus) { useName(bus); }}) {}

private:
    void useLock() {
        name_.reset();
        if (!lock_) {
            lock_ = tryLockedFile(loop_, request_);
        }
    }

    /// Where another has taken the name meanwhile, both stay.
    void useName(const std::shared_ptr<BusConnection>& bus) {
        try {
            name_ = nameOn(bus, request_);
        } catch (const sdbus::Error&) {
            name_.reset();
        }
    }

    DescriptorWatcher& loop_;
    SingleInstanceRequest request_;
    std::unique_ptr<SingleInstance> name_;
    std::unique_ptr<SingleInstance> lock_;
    SessionBusReturn busReturn_;
};

} // namespace

std::unique_ptr<SingleInstance> claimSingleInstance(DescriptorWatcher& loop,
                                                    SingleInstanceRequest request) {
    std::optional<std::unique_ptr<SingleInstance>> claimed;
    if (const auto connection = BusConnection::session(loop)) {
        claimed = claimBusName(connection, request);
    }
    const bool isName = claimed.has_value();
    std::unique_ptr<SingleInstance> instance =
        isName ? std::move(*claimed) : claimLockedFile(loop, request);
    if (!instance) {
        return nullptr;
    }
    return std::make_unique<HeldInstance>(loop, std::move(request), std::move(instance), isName);
}

} // namespace vellmark
