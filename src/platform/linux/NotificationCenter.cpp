#include "platform/NotificationCenter.h"

#include "platform/linux/BusConnection.h"
#include "platform/linux/SessionBusReturn.h"
#include "platform/linux/ShownNotifications.h"

#include <sdbus-c++/sdbus-c++.h>

#include <algorithm>
#include <map>
#include <optional>
#include <utility>

namespace vellmark {
namespace {

// Name, path and interface of the Desktop Notifications Specification.
constexpr auto service = "org.freedesktop.Notifications";
constexpr auto path = "/org/freedesktop/Notifications";
constexpr auto interface = "org.freedesktop.Notifications";

/// The action that stands for a click on the notice.
constexpr auto defaultAction = "default";
constexpr std::uint8_t lowUrgency = 0;
constexpr std::uint8_t normalUrgency = 1;
constexpr std::int32_t serversTimeout = -1;

using Hints = std::map<std::string, sdbus::Variant>;
/// Width, height, bytes a row, whether there is alpha, bits a sample, samples a pixel, bytes.
using ImageData = sdbus::Struct<std::int32_t, std::int32_t, std::int32_t, bool, std::int32_t,
                                std::int32_t, std::vector<std::uint8_t>>;

ImageData imageData(const NotificationIcon& icon) {
    std::vector<std::uint8_t> bytes;
    bytes.reserve(icon.pixels.size() * 4);
    for (const std::uint32_t pixel : icon.pixels) {
        for (const int shift : {16, 8, 0, 24}) {
            bytes.push_back(static_cast<std::uint8_t>(pixel >> shift));
        }
    }
    return ImageData{icon.side, icon.side, icon.side * 4, true, 8, 4, std::move(bytes)};
}

/// Services that know markup take "<" for it, others show it as it stands.
std::string escaped(const std::string& text) {
    std::string result;
    for (const char character : text) {
        switch (character) {
        case '&':
            result += "&amp;";
            break;
        case '<':
            result += "&lt;";
            break;
        case '>':
            result += "&gt;";
            break;
        default:
            result += character;
        }
    }
    return result;
}

class DesktopNotifications final : public NotificationCenter {
public:
    DesktopNotifications(DescriptorWatcher& loop, NotificationIcon icon, Handlers handlers)
        : loop_(loop), icon_(std::move(icon)), handlers_(std::move(handlers)),
          busReturn_(loop, {.onLoss = {}, .onReturn = [this](const auto&) { busReturned(); }}) {}

    Availability availability() const override { return availability_; }

    void lookForService(bool /*mayAskUser*/) override {
        if (availability_ == Availability::available || isAsking_) {
            return;
        }
        if (!connection_ || !connection_->isOpen()) {
            connect();
        }
        if (connection_) {
            askForCapabilities();
        } else {
            availability_ = Availability::unserved;
        }
    }

    void post(const NotificationContent& content) override {
        if (const auto sending = shown_.post(content)) {
            send(*sending);
        }
    }

    void close(const std::string& id) override {
        if (const auto number = shown_.close(id)) {
            closeNumber(*number);
        }
    }

    bool isUnderWay(const std::string& id) const override { return shown_.isUnderWay(id); }

    bool openSystemSettings() const override { return false; }
    bool outlivesProgram() const override { return false; }

private:
    /// Nobody needs the service before it was looked for.
    void busReturned() {
        if (availability_ != Availability::unknown) {
            connect();
            if (connection_) {
                askForCapabilities();
            }
        }
    }

    void connect() {
        disconnected_ = {};
        owner_ = {};
        proxy_.reset();
        connection_ = BusConnection::session(loop_);
        if (!connection_) {
            return;
        }
        try {
            follow();
        } catch (const sdbus::Error&) {
            proxy_.reset();
            connection_.reset();
        }
    }

    void follow() {
        proxy_ = sdbus::createProxy(connection_->bus(), service, path);
        // Signals name the notices of all programs.
        proxy_->uponSignal("ActionInvoked")
            .onInterface(interface)
            .call([this](std::uint32_t number, const std::string& action) {
                if (const auto id = shown_.idOf(number)) {
                    handlers_.chosen(*id, action == defaultAction ? std::string() : action);
                }
            });
        proxy_->uponSignal("ActivationToken")
            .onInterface(interface)
            .call([this](std::uint32_t number, const std::string& token) {
                if (shown_.idOf(number) && handlers_.activationToken) {
                    handlers_.activationToken(token);
                }
            });
        proxy_->uponSignal("NotificationClosed")
            .onInterface(interface)
            .call([this](std::uint32_t number, std::uint32_t /*reason*/) {
                if (const auto id = shown_.closed(number)) {
                    handlers_.gone(*id);
                }
            });
        proxy_->finishRegistration();
        owner_ = connection_->bus().addMatch(
            "type='signal',sender='org.freedesktop.DBus',interface='org.freedesktop.DBus',"
            "member='NameOwnerChanged',arg0='org.freedesktop.Notifications'",
            [this](sdbus::Message& message) {
                std::string name;
                std::string before;
                std::string after;
                message >> name >> before >> after;
                ownerChanged(!before.empty(), !after.empty());
            });
        disconnected_ = connection_->bus().addMatch(
            "type='signal',interface='org.freedesktop.DBus.Local',member='Disconnected'",
            [this](sdbus::Message&) { ownerChanged(true, false); });
    }

    void ownerChanged(bool wasThere, bool isThere) {
        // What the former one can do may still come.
        asking_.cancel();
        isAsking_ = false;
        if (wasThere) {
            for (const std::string& id : shown_.lost()) {
                handlers_.failed(id);
            }
            handlers_.allGone();
        }
        if (isThere) {
            askForCapabilities();
        } else {
            setAvailability(Availability::unserved);
        }
    }

    /// Whoever can be started to show notices is.
    void askForCapabilities() {
        try {
            isAsking_ = true;
            asking_ =
                proxy_->callMethodAsync("GetCapabilities")
                    .onInterface(interface)
                    .withTimeout(untilAnswered)
                    .uponReplyInvoke([this](const sdbus::Error* error,
                                            const std::vector<std::string>& capabilities) {
                        isAsking_ = false;
                        capabilities_ = error ? std::vector<std::string>() : capabilities;
                        setAvailability(error ? Availability::unserved : Availability::available);
                    });
        } catch (const sdbus::Error&) {
            isAsking_ = false;
            availability_ = Availability::unserved;
        }
    }

    void setAvailability(Availability availability) {
        if (std::exchange(availability_, availability) != availability) {
            handlers_.availabilityChanged();
        }
    }

    bool can(const char* capability) const {
        return std::ranges::find(capabilities_, capability) != capabilities_.end();
    }

    void send(const ShownNotifications::Sending& sending) {
        const NotificationContent& content = sending.content;
        std::vector<std::string> actions;
        if (can("actions")) {
            // Services that show it as a button as well have a name for it.
            actions = {defaultAction, content.title};
            for (const NotificationContent::Action& action : content.actions) {
                actions.insert(actions.end(), {action.name, action.title});
            }
        }
        Hints hints{{"urgency", sdbus::Variant(content.isQuiet ? lowUrgency : normalUrgency)},
                    {"desktop-entry", sdbus::Variant(std::string("app.vellmark.Vellmark"))}};
        if (icon_.side > 0) {
            hints.emplace("image-data", sdbus::Variant(imageData(icon_)));
        }
        try {
            proxy_->callMethodAsync("Notify")
                .onInterface(interface)
                .withTimeout(untilAnswered)
                .withArguments(std::string("Vellmark"), sending.replaces, std::string(),
                               content.title,
                               can("body-markup") ? escaped(content.body) : content.body, actions,
                               hints, serversTimeout)
                .uponReplyInvoke([this, ticket = sending.ticket](const sdbus::Error* error,
                                                                 std::uint32_t number) {
                    answered(ticket, error ? std::nullopt : std::optional(number));
                });
        } catch (const sdbus::Error&) {
            // The bus has gone, which tells so by itself.
        }
    }

    void answered(std::uint64_t ticket, std::optional<std::uint32_t> number) {
        const ShownNotifications::Outcome outcome = shown_.answered(ticket, number);
        if (outcome.close) {
            closeNumber(*outcome.close);
        }
        if (outcome.send) {
            send(*outcome.send);
        }
        if (outcome.gone) {
            handlers_.gone(*outcome.gone);
        }
        if (outcome.failed) {
            handlers_.failed(*outcome.failed);
        }
    }

    void closeNumber(std::uint32_t number) {
        try {
            // The answer, that it is closed, is nobody's business any more.
            proxy_->callMethodAsync("CloseNotification")
                .onInterface(interface)
                .withArguments(number)
                .uponReplyInvoke([](const sdbus::Error*) {});
        } catch (const sdbus::Error&) {
            // The bus has gone, and the notice with it.
        }
    }

    DescriptorWatcher& loop_;
    NotificationIcon icon_;
    Handlers handlers_;
    Availability availability_ = Availability::unknown;
    bool isAsking_ = false;
    sdbus::PendingAsyncCall asking_;
    std::vector<std::string> capabilities_;
    ShownNotifications shown_;
    std::shared_ptr<BusConnection> connection_;
    std::unique_ptr<sdbus::IProxy> proxy_;
    sdbus::Slot owner_;
    sdbus::Slot disconnected_;
    SessionBusReturn busReturn_;
};

} // namespace

std::unique_ptr<NotificationCenter> makeNotificationCenter(DescriptorWatcher& loop,
                                                           NotificationIcon icon,
                                                           NotificationCenter::Handlers handlers) {
    return std::make_unique<DesktopNotifications>(loop, std::move(icon), std::move(handlers));
}

} // namespace vellmark
