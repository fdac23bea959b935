#include "platform/Wake.h"

#include "platform/linux/BusConnection.h"
#include "platform/linux/BusLibrary.h"

namespace vellmark {
namespace {

constexpr auto logind = "org.freedesktop.login1";

class LogindWake final : public WakeObserver {
public:
    LogindWake(std::shared_ptr<BusConnection> connection, std::function<void()> onWake)
        : connection_(std::move(connection)),
          manager_(sdbus::createProxy(connection_->bus(), bus::ServiceName(logind),
                                      sdbus::ObjectPath("/org/freedesktop/login1"))) {
        manager_->uponSignal("PrepareForSleep")
            .onInterface("org.freedesktop.login1.Manager")
            .call([onWake = std::move(onWake)](bool isGoingToSleep) {
                if (!isGoingToSleep) {
                    onWake();
                }
            });
        bus::receiveSignals(*manager_);
        connection_->process();
    }

private:
    std::shared_ptr<BusConnection> connection_;
    std::unique_ptr<sdbus::IProxy> manager_;
};

bool hasOwner(BusConnection& connection, const std::string& name) {
    auto bus = sdbus::createProxy(connection.bus(), bus::ServiceName("org.freedesktop.DBus"),
                                  sdbus::ObjectPath("/org/freedesktop/DBus"));
    bool isOwned = false;
    bus->callMethod("NameHasOwner")
        .onInterface("org.freedesktop.DBus")
        .withArguments(name)
        .storeResultsTo(isOwned);
    return isOwned;
}

} // namespace

std::unique_ptr<WakeObserver> observeWake(DescriptorWatcher& loop, std::function<void()> onWake) {
    const auto connection = BusConnection::system(loop);
    if (!connection) {
        return nullptr;
    }
    try {
        if (!hasOwner(*connection, logind)) {
            return nullptr;
        }
        return std::make_unique<LogindWake>(connection, std::move(onWake));
    } catch (const sdbus::Error&) {
        return nullptr;
    }
}

} // namespace vellmark
