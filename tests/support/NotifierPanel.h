#pragma once

#include <sdbus-c++/sdbus-c++.h>

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>

namespace vellmark::tests {

/// A panel that hosts status notifiers on the session bus, with a thread of its own as another
/// process would have. Its functions may be called from any thread.
class NotifierPanel {
public:
    NotifierPanel()
        : connection_(sdbus::createSessionBusConnection()),
          watcher_(sdbus::createObject(*connection_, "/StatusNotifierWatcher")) {
        watcher_->registerMethod("RegisterStatusNotifierItem")
            .onInterface(name)
            .implementedAs([this](const std::string& service) {
                const std::lock_guard hold(lock_);
                registered_ = service;
                arrived_.notify_all();
            });
        watcher_->registerProperty("IsStatusNotifierHostRegistered")
            .onInterface(name)
            .withGetter([] { return true; });
        watcher_->finishRegistration();
        connection_->requestName(name);
        connection_->enterEventLoopAsync();
    }
    ~NotifierPanel() { freeze(); }

    /// Stays on the bus and answers nothing any more.
    void freeze() { connection_->leaveEventLoop(); }
    void thaw() { connection_->enterEventLoopAsync(); }
    NotifierPanel(const NotifierPanel&) = delete;
    NotifierPanel& operator=(const NotifierPanel&) = delete;

    /// The name of the item that registered last; empty before one has.
    std::string registered() const {
        const std::lock_guard hold(lock_);
        return registered_;
    }

    void forget() {
        const std::lock_guard hold(lock_);
        registered_.clear();
    }

    /// Waits until an item is registered; empty when none comes in `limit`.
    std::string waitForItem(std::chrono::seconds limit) {
        std::unique_lock hold(lock_);
        arrived_.wait_for(hold, limit, [this] { return !registered_.empty(); });
        return registered_;
    }

private:
    /// Of the watcher, of its interface and on the bus.
    static constexpr auto name = "org.kde.StatusNotifierWatcher";

    mutable std::mutex lock_;
    std::condition_variable arrived_;
    std::string registered_;
    std::unique_ptr<sdbus::IConnection> connection_;
    std::unique_ptr<sdbus::IObject> watcher_;
};

} // namespace vellmark::tests
