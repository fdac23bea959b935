#pragma once

#include "platform/DescriptorWatcher.h"

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
/// of the common desktops do. Follows panels that come later or restart. Main thread; handlers are
/// called from the event loop, never from within a call on this object.
class StatusNotifierItem {
public:
    struct Handlers {
        /// The pointer's place on the screen as the panel tells it; (0, 0) from panels that do not
        /// know.
        std::function<void(int x, int y)> activate;
        std::function<void(const std::string& action)> menuItemChosen;
        /// Whether a panel shows the item now. Told once after the start, then on every change.
        std::function<void(bool isShown)> hostChanged;
    };

    /// Null when there is no session bus or it does not answer.
    static std::unique_ptr<StatusNotifierItem> create(DescriptorWatcher& loop, std::string id,
                                                      std::string title, Handlers handlers);
    ~StatusNotifierItem();
    StatusNotifierItem(const StatusNotifierItem&) = delete;
    StatusNotifierItem& operator=(const StatusNotifierItem&) = delete;

    /// The same picture in several sizes.
    void setIcon(std::vector<NotifierPixmap> pixmaps);
    /// Plain text. Empty: none, and no title meanwhile, which some panels show in its place.
    void setToolTip(const std::string& text);
    /// A few characters beside the icon, on panels that show them; empty: none.
    void setLabel(const std::string& text);
    void setMenu(std::vector<NotifierMenuItem> items);

private:
    class Connection;
    explicit StatusNotifierItem(std::unique_ptr<Connection> connection);
    std::unique_ptr<Connection> connection_;
};

} // namespace vellmark
