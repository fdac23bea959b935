#pragma once

#include "platform/linux/BusLibrary.h"
#include "platform/linux/StatusNotifierItem.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace vellmark {

/// The menu that panels show for the item, with its submenus, over the interface
/// "com.canonical.dbusmenu". Main thread.
class NotifierMenu {
public:
    NotifierMenu(sdbus::IConnection& bus, const std::string& path,
                 std::function<void(const std::string& action)> onChosen);

    void setItems(std::vector<NotifierMenuItem> items);

private:
    using Properties = std::map<std::string, sdbus::Variant>;
    using Layout = sdbus::Struct<std::int32_t, Properties, std::vector<sdbus::Variant>>;
    using ItemProperties = sdbus::Struct<std::int32_t, Properties>;
    using MenuEvent = sdbus::Struct<std::int32_t, std::string, sdbus::Variant, std::uint32_t>;

    void addMethods(bus::Interface& interface);
    static void addProperties(bus::Interface& interface);
    /// A line of the menu, with the identifiers of those below it.
    struct Line {
        const NotifierMenuItem* item = nullptr;
        std::vector<std::int32_t> below;
    };
    /// Gives the items and all below them identifiers, which it returns.
    std::vector<std::int32_t> enter(const std::vector<NotifierMenuItem>& items);
    /// Null for the root and for identifiers of an earlier menu.
    const Line* line(std::int32_t id) const;
    Properties properties(std::int32_t id) const;
    Layout layout(std::int32_t parent, std::int32_t depth) const;
    bool handleEvent(std::int32_t id, const std::string& event);

    std::vector<NotifierMenuItem> items_;
    std::vector<Line> lines_;           ///< of `items_` and all below them, by identifier
    std::vector<std::int32_t> topmost_; ///< the identifiers of `items_`
    /// Identifiers are never used again, so that a click on an old menu hits nothing else.
    std::int32_t firstID_ = 1;
    std::uint32_t revision_ = 1;
    std::function<void(const std::string&)> onChosen_;
    std::unique_ptr<sdbus::IObject> object_;
};

} // namespace vellmark
