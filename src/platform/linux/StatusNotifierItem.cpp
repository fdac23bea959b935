#include "platform/linux/StatusNotifierItem.h"

#include "platform/linux/BusConnection.h"
#include "platform/linux/NotifierMenu.h"

#include <sdbus-c++/sdbus-c++.h>

#include <optional>
#include <unistd.h>

namespace vellmark {
namespace {

constexpr auto itemInterface = "org.kde.StatusNotifierItem";
constexpr auto itemPath = "/StatusNotifierItem";
constexpr auto menuPath = "/StatusNotifierItem/Menu";
constexpr auto watcherName = "org.kde.StatusNotifierWatcher";
constexpr auto watcherPath = "/StatusNotifierWatcher";
constexpr auto watcherInterface = "org.kde.StatusNotifierWatcher";

/// Width, height, pixels as bytes in network order.
using Pixmap = sdbus::Struct<std::int32_t, std::int32_t, std::vector<std::uint8_t>>;
/// Icon name, icon, title, description (which may hold markup).
using ToolTip = sdbus::Struct<std::string, std::vector<Pixmap>, std::string, std::string>;

Pixmap wireForm(const NotifierPixmap& pixmap) {
    std::vector<std::uint8_t> bytes;
    bytes.reserve(pixmap.pixels.size() * 4);
    for (const std::uint32_t pixel : pixmap.pixels) {
        for (int shift = 24; shift >= 0; shift -= 8) {
            bytes.push_back(static_cast<std::uint8_t>(pixel >> shift));
        }
    }
    return Pixmap{pixmap.side, pixmap.side, std::move(bytes)};
}

} // namespace

/// The item's objects on the bus and its dealings with the watcher, the process that knows the
/// panels.
class StatusNotifierItem::Connection {
public:
    Connection(std::shared_ptr<BusConnection> connection, std::string id, std::string title,
               Handlers handlers)
        : connection_(std::move(connection)), id_(std::move(id)), title_(std::move(title)),
          handlers_(std::move(handlers)),
          menu_(connection_->bus(), menuPath,
                [this](const std::string& action) { handlers_.menuItemChosen(action); }),
          item_(sdbus::createObject(connection_->bus(), itemPath)) {
        registerItem();
        busName_.append(itemInterface).append("-").append(std::to_string(::getpid())).append("-1");
        connection_->bus().requestName(busName_);
        followWatcher();
        disconnected_ = connection_->bus().addMatch(
            "type='signal',interface='org.freedesktop.DBus.Local',member='Disconnected'",
            [this](sdbus::Message&) { setShown(false); });
    }

    void setIcon(std::vector<NotifierPixmap> pixmaps) {
        if (pixmaps == pixmaps_) {
            return;
        }
        pixmaps_ = std::move(pixmaps);
        emit("NewIcon");
    }

    void setToolTip(const std::string& text) {
        if (text == toolTip_) {
            return;
        }
        toolTip_ = text;
        emit("NewToolTip");
        if (const bool isTitled = !text.empty(); isTitled != isTitled_) {
            isTitled_ = isTitled;
            emit("NewTitle");
        }
    }

    void setLabel(const std::string& text) {
        if (text != label_) {
            label_ = text;
            try {
                item_->emitSignal("XAyatanaNewLabel")
                    .onInterface(itemInterface)
                    .withArguments(label_, std::string());
            } catch (const sdbus::Error&) {
                // The bus has gone, and with it every panel.
            }
        }
    }

    void setMenu(std::vector<NotifierMenuItem> items) {
        try {
            menu_.setItems(std::move(items));
        } catch (const sdbus::Error&) {
            // The bus has gone, and with it everyone who would show the menu.
        }
    }

private:
    void registerItem() {
        registerProperties();
        item_->registerMethod("Activate")
            .onInterface(itemInterface)
            .implementedAs([this](std::int32_t x, std::int32_t y) { handlers_.activate(x, y); });
        item_->registerMethod("SecondaryActivate")
            .onInterface(itemInterface)
            .implementedAs([this](std::int32_t x, std::int32_t y) { handlers_.activate(x, y); });
        item_->registerMethod("ProvideXdgActivationToken")
            .onInterface(itemInterface)
            .implementedAs([this](const std::string& token) {
                if (handlers_.activationToken) {
                    handlers_.activationToken(token);
                }
            });
        // Panels that show the menu themselves never call this.
        item_->registerMethod("ContextMenu")
            .onInterface(itemInterface)
            .implementedAs([](std::int32_t, std::int32_t) {});
        item_->registerMethod("Scroll")
            .onInterface(itemInterface)
            .implementedAs([](std::int32_t, const std::string&) {});
        for (const char* signal :
             {"NewTitle", "NewIcon", "NewAttentionIcon", "NewOverlayIcon", "NewToolTip"}) {
            item_->registerSignal(signal).onInterface(itemInterface);
        }
        item_->registerSignal("NewStatus").onInterface(itemInterface).withParameters<std::string>();
        item_->registerSignal("XAyatanaNewLabel")
            .onInterface(itemInterface)
            .withParameters<std::string, std::string>();
        item_->finishRegistration();
    }

    template<typename Value>
    void registerProperty(const char* name, Value value) {
        item_->registerProperty(name).onInterface(itemInterface).withGetter([value] {
            return value;
        });
    }

    void registerProperties() {
        registerProperty("Category", std::string("ApplicationStatus"));
        registerProperty("Id", id_);
        item_->registerProperty("Title").onInterface(itemInterface).withGetter([this] {
            return isTitled_ ? title_ : std::string();
        });
        registerProperty("Status", std::string("Active"));
        registerProperty("WindowId", std::int32_t{0});
        registerProperty("IconThemePath", std::string());
        registerProperty("IconName", std::string());
        registerProperty("OverlayIconName", std::string());
        registerProperty("OverlayIconPixmap", std::vector<Pixmap>());
        registerProperty("AttentionIconName", std::string());
        registerProperty("AttentionIconPixmap", std::vector<Pixmap>());
        registerProperty("AttentionMovieName", std::string());
        // False: a left click opens the popover, only the right one the menu.
        registerProperty("ItemIsMenu", false);
        registerProperty("Menu", sdbus::ObjectPath(menuPath));
        item_->registerProperty("IconPixmap").onInterface(itemInterface).withGetter([this] {
            std::vector<Pixmap> icon;
            for (const NotifierPixmap& pixmap : pixmaps_) {
                icon.push_back(wireForm(pixmap));
            }
            return icon;
        });
        item_->registerProperty("XAyatanaLabel").onInterface(itemInterface).withGetter([this] {
            return label_;
        });
        registerProperty("XAyatanaLabelGuide", std::string("100%"));
        item_->registerProperty("ToolTip").onInterface(itemInterface).withGetter([this] {
            return ToolTip{std::string(), std::vector<Pixmap>(), toolTip_, std::string()};
        });
    }

    void emit(const char* signal) {
        try {
            item_->emitSignal(signal).onInterface(itemInterface);
        } catch (const sdbus::Error&) {
            // The bus has gone; so has the panel.
        }
    }

    void followWatcher() {
        watcherOwner_ = connection_->bus().addMatch(
            "type='signal',sender='org.freedesktop.DBus',interface='org.freedesktop.DBus',"
            "member='NameOwnerChanged',arg0='org.kde.StatusNotifierWatcher'",
            [this](sdbus::Message& message) {
                std::string name;
                std::string before;
                std::string after;
                message >> name >> before >> after;
                if (after.empty()) {
                    setShown(false);
                } else {
                    registerWithWatcher();
                }
            });
        watcher_ = sdbus::createProxy(connection_->bus(), watcherName, watcherPath);
        watcher_->uponSignal("StatusNotifierHostRegistered")
            .onInterface(watcherInterface)
            .call([this] { askForHost(); });
        watcher_->uponSignal("StatusNotifierHostUnregistered")
            .onInterface(watcherInterface)
            .call([this] { askForHost(); });
        watcher_->finishRegistration();
        registerWithWatcher();
    }

    void registerWithWatcher() {
        watcher_->callMethodAsync("RegisterStatusNotifierItem")
            .onInterface(watcherInterface)
            .withTimeout(untilAnswered)
            .withArguments(busName_)
            .uponReplyInvoke([this](const sdbus::Error* error) {
                if (error) {
                    setShown(false);
                } else {
                    askForHost();
                }
            });
    }

    void askForHost() {
        watcher_->callMethodAsync("Get")
            .onInterface("org.freedesktop.DBus.Properties")
            .withTimeout(untilAnswered)
            .withArguments(std::string(watcherInterface),
                           std::string("IsStatusNotifierHostRegistered"))
            .uponReplyInvoke([this](const sdbus::Error* error, const sdbus::Variant& value) {
                setShown(!error && value.containsValueOfType<bool>() && value.get<bool>());
            });
    }

    void setShown(bool isShown) {
        if (isShown == isShown_) {
            return;
        }
        isShown_ = isShown;
        handlers_.hostChanged(isShown);
    }

    std::shared_ptr<BusConnection> connection_;
    std::string id_;
    std::string title_;
    std::string busName_;
    Handlers handlers_;
    std::vector<NotifierPixmap> pixmaps_;
    std::string toolTip_;
    std::string label_;
    bool isTitled_ = true;
    std::optional<bool> isShown_;
    NotifierMenu menu_;
    std::unique_ptr<sdbus::IObject> item_;
    std::unique_ptr<sdbus::IProxy> watcher_;
    sdbus::Slot watcherOwner_;
    sdbus::Slot disconnected_;
};

StatusNotifierItem::StatusNotifierItem(DescriptorWatcher& loop, std::string id, std::string title,
                                       Handlers handlers)
    : id_(std::move(id)), title_(std::move(title)), handlers_(std::move(handlers)),
      busReturn_(loop, {.onLoss =
                            [this] {
                                connection_.reset();
                                handlers_.hostChanged(false);
                            },
                        .onReturn = [this](const auto& bus) { connect(bus); }}) {
    connect(BusConnection::session(loop));
}

StatusNotifierItem::~StatusNotifierItem() = default;

void StatusNotifierItem::connect(std::shared_ptr<BusConnection> bus) {
    if (!bus) {
        return;
    }
    try {
        connection_ = std::make_unique<Connection>(std::move(bus), id_, title_, handlers_);
    } catch (const sdbus::Error&) {
        connection_.reset();
        return;
    }
    connection_->setIcon(pixmaps_);
    connection_->setToolTip(toolTip_);
    connection_->setLabel(label_);
    connection_->setMenu(menu_);
}

void StatusNotifierItem::setIcon(std::vector<NotifierPixmap> pixmaps) {
    pixmaps_ = std::move(pixmaps);
    if (connection_) {
        connection_->setIcon(pixmaps_);
    }
}

void StatusNotifierItem::setToolTip(const std::string& text) {
    toolTip_ = text;
    if (connection_) {
        connection_->setToolTip(text);
    }
}

void StatusNotifierItem::setLabel(const std::string& text) {
    label_ = text;
    if (connection_) {
        connection_->setLabel(text);
    }
}

void StatusNotifierItem::setMenu(std::vector<NotifierMenuItem> items) {
    menu_ = std::move(items);
    if (connection_) {
        connection_->setMenu(menu_);
    }
}

} // namespace vellmark
