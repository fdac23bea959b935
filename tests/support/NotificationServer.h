#pragma once

#include <sdbus-c++/sdbus-c++.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace vellmark::tests {

/// Shows notices for programs on the session bus, with a thread of its own as another process would
/// have. Its functions may be called from any thread.
class NotificationServer {
public:
    struct Shown {
        std::uint32_t replaces;
        std::string title;
        std::string body;
        std::vector<std::string> actions;
        bool hasPicture;
    };

    /// One with the capability "refuses" shows nothing.
    explicit NotificationServer(std::vector<std::string> capabilities = {"actions", "body-markup"})
        : refuses_(std::ranges::find(capabilities, "refuses") != capabilities.end()),
          connection_(sdbus::createSessionBusConnection()),
          object_(sdbus::createObject(*connection_, "/org/freedesktop/Notifications")) {
        object_->registerMethod("GetCapabilities")
            .onInterface(service)
            .implementedAs([capabilities = std::move(capabilities)] { return capabilities; });
        object_->registerMethod("Notify").onInterface(service).implementedAs(
            [this](const std::string&, std::uint32_t replaces, const std::string&,
                   const std::string& title, const std::string& body,
                   const std::vector<std::string>& actions,
                   const std::map<std::string, sdbus::Variant>& hints, std::int32_t) {
                const std::lock_guard hold(lock_);
                if (title == "refuse" || refuses_) {
                    ++refusals_;
                    throw sdbus::Error("org.example.Full", "no room");
                }
                shown_.push_back({replaces, title, body, actions, hints.contains("image-data")});
                return replaces != 0 ? replaces : ++last_;
            });
        object_->registerMethod("CloseNotification")
            .onInterface(service)
            .implementedAs([this](std::uint32_t number) {
                const std::lock_guard hold(lock_);
                closed_.push_back(number);
            });
        object_->registerSignal("ActionInvoked")
            .onInterface(service)
            .withParameters<std::uint32_t, std::string>();
        object_->registerSignal("NotificationClosed")
            .onInterface(service)
            .withParameters<std::uint32_t, std::uint32_t>();
        object_->finishRegistration();
        connection_->requestName(service);
        connection_->enterEventLoopAsync();
    }
    ~NotificationServer() { connection_->leaveEventLoop(); }
    NotificationServer(const NotificationServer&) = delete;
    NotificationServer& operator=(const NotificationServer&) = delete;

    /// Stays on the bus and answers nothing until it is thawed.
    void freeze() { connection_->leaveEventLoop(); }
    void thaw() { connection_->enterEventLoopAsync(); }

    std::vector<Shown> shown() const {
        const std::lock_guard hold(lock_);
        return shown_;
    }
    int refusals() const {
        const std::lock_guard hold(lock_);
        return refusals_;
    }
    std::vector<std::uint32_t> closed() const {
        const std::lock_guard hold(lock_);
        return closed_;
    }
    void click(std::uint32_t number, const std::string& action) {
        object_->emitSignal("ActionInvoked").onInterface(service).withArguments(number, action);
    }
    void dismiss(std::uint32_t number) {
        object_->emitSignal("NotificationClosed")
            .onInterface(service)
            .withArguments(number, std::uint32_t{2});
    }

private:
    static constexpr auto service = "org.freedesktop.Notifications";

    mutable std::mutex lock_;
    bool refuses_;
    int refusals_ = 0;
    std::uint32_t last_ = 40;
    std::vector<Shown> shown_;
    std::vector<std::uint32_t> closed_;
    std::unique_ptr<sdbus::IConnection> connection_;
    std::unique_ptr<sdbus::IObject> object_;
};

} // namespace vellmark::tests
