#pragma once

#include "platform/DescriptorWatcher.h"
#include "platform/Preferences.h"
#include "platform/SystemAppearance.h"
#include "presentation/StatusItemContent.h"
#include "presentation/StatusMenuContent.h"
#include "store/AppSettings.h"

#include <QRect>

#include <functional>
#include <memory>
#include <string_view>
#include <vector>

namespace vellmark {

/// The program's item in the menu bar or panel, in the form that the desktop has for it: macOS'
/// status item; on Linux a status notifier, an old-style tray icon, or a strip at the screen's
/// edge. Main thread.
class StatusItem {
public:
    struct Events {
        /// The item was clicked; `anchor` is the item's place on the screen, or the click's.
        std::function<void(const QRect& anchor)> toggle;
        /// An item of its menu was chosen.
        std::function<void(std::string_view action)> menuAction;
    };

    virtual ~StatusItem() = default;

    /// Draws only what differs from the last call.
    virtual void show(const StatusItemContent& content) = 0;
    /// Changes nothing where the items are the same.
    virtual void setMenu(std::vector<StatusMenuItem> items) = 0;
    /// The colour scheme that the panel probably follows; never `noPreference`.
    virtual void setPanelScheme(ColorScheme scheme) = 0;
    /// The glyph's ink; `automatic` follows the panel's ground.
    virtual void setInk(StatusInk ink) = 0;
    /// Where the item's tooltip would lie over the open popover, there is none meanwhile.
    virtual void setPopoverOpen(bool isOpen) = 0;
    /// The item's place now, for opening the popover without a click; empty when it is not known.
    virtual QRect anchor() const = 0;
};

/// Never null. Remembers in `preferences` where the strip was put.
std::unique_ptr<StatusItem> makeStatusItem(DescriptorWatcher& loop, Preferences& preferences,
                                           StatusItem::Events events);

} // namespace vellmark
