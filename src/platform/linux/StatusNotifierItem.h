#pragma once

#include "platform/DescriptorWatcher.h"
#include "platform/linux/SessionBusReturn.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace vellmark {

/// A square picture; pixels are 0xAARRGGBB, not premultiplied, row by row from the top.
struct NotifierPixmap {
    int side = 0;
    std::vector<std::uint32_t> pixels;
    bool operator==(const NotifierPixmap&) const = default;
};

/// A line of the item's menu; a separator has no label. One with a submenu has no action.
struct NotifierMenuItem {
    std::string label;
    std::string action;
    bool isEnabled = true;
    std::vector<NotifierMenuItem> items = {};
    bool operator==(const NotifierMenuItem&) const = default;
};

/// The program's item in a panel that hosts status notifiers, over the session bus.
///
/// Speaks "org.kde.StatusNotifierItem" and, for the menu, "com.canonical.dbusmenu", as the panels
/// of the common desktops do. Follows panels that come later or restart, and a bus that does. Main
/// thread; handlers are called from the event loop, never from within a call on this object.
class StatusNotifierItem {
public:
    struct Handlers {
        /// The pointer's place on the screen as the panel tells it; (0, 0) from panels that do not
        /// know.
        std::function<void(int x, int y)> activate;
        std::function<void(const std::string& action)> menuItemChosen;
        /// Whether a panel shows the item now. Told once after the start, then on every change.
        std::function<void(bool isShown)> hostChanged;
        /// The panel's leave to take the keyboard, before `activate`; not from every panel.
        std::function<void(const std::string& token)> activationToken = {};
    };

    StatusNotifierItem(DescriptorWatcher& loop, std::string id, std::string title,
                       Handlers handlers);
    ~StatusNotifierItem();
    StatusNotifierItem(const StatusNotifierItem&) = delete;
    StatusNotifierItem& operator=(const StatusNotifierItem&) = delete;

    /// False when there is no session bus or it does not answer: nobody can show the item now.
    bool isOnBus() const { return connection_ != nullptr; }

    /// The same picture in several sizes.
    void setIcon(std::vector<NotifierPixmap> pixmaps);
    /// Plain text. Empty: none, and no title meanwhile, which some panels show in its place.
    void setToolTip(const std::string& text);
    /// A few characters beside the icon, on panels that show them; empty: none.
    void setLabel(const std::string& text);
    void setMenu(std::vector<NotifierMenuItem> items);

private:
    class Connection;
    void connect(std::shared_ptr<BusConnection> bus);

    std::string id_;
    std::string title_;
    Handlers handlers_;
    // What is shown, for the next bus.
    std::vector<NotifierPixmap> pixmaps_;
    std::string toolTip_;
    std::string label_;
    std::vector<NotifierMenuItem> menu_;
    std::unique_ptr<Connection> connection_;
    SessionBusReturn busReturn_;
};

} // namespace vellmark
