#include "platform/linux/BusConnection.h"

#include "platform/linux/BusLibrary.h"

#include <utility>

namespace vellmark {

BusConnection::BusConnection(std::unique_ptr<sdbus::IConnection> connection)
    : connection_(std::move(connection)) {}

BusConnection::~BusConnection() {
    watch_.reset();
    closeBus(std::move(connection_));
}

std::shared_ptr<BusConnection> BusConnection::open(DescriptorWatcher& loop, MessageBus which) {
    auto connection = openBus(which);
    if (!connection) {
        return nullptr;
    }
    std::shared_ptr<BusConnection> opened(new BusConnection(std::move(connection)));
    try {
        // The watch belongs to the connection, so it never outlives what it calls.
        opened->watch_ = loop.watch(opened->connection_->getEventLoopPollData().fd,
                                    [connection = opened.get()] { connection->process(); });
    } catch (const sdbus::Error&) {
        return nullptr;
    }
    return opened;
}

std::shared_ptr<BusConnection> BusConnection::session(DescriptorWatcher& loop) {
    static std::weak_ptr<BusConnection> shared;
    if (auto existing = shared.lock(); existing && existing->isOpen()) {
        return existing;
    }
    const auto opened = open(loop, MessageBus::session);
    shared = opened;
    return opened;
}

std::shared_ptr<BusConnection> BusConnection::system(DescriptorWatcher& loop) {
    return open(loop, MessageBus::system);
}

void BusConnection::process() {
    // A handler may drop the last owner.
    const auto keepAlive = shared_from_this();
    try {
        while (bus::processPendingEvent(*connection_)) {
        }
    } catch (const sdbus::Error&) {
        watch_.reset();
        if (const auto tell = std::exchange(onLoss, {})) {
            tell();
        }
    }
}

} // namespace vellmark
