#pragma once

#include "platform/linux/StatusNotifierItem.h"

#include <sdbus-c++/sdbus-c++.h>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace vellmark {

/// A flat menu that panels show for the item, over the interface "com.canonical.dbusmenu".
/// Main thread.
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

    void registerMethods();
    void registerProperties();
    /// Null for the root and for identifiers of an earlier menu.
    const NotifierMenuItem* item(std::int32_t id) const;
    Properties properties(std::int32_t id) const;
    Layout layout(std::int32_t parent, std::int32_t depth) const;
    bool handleEvent(std::int32_t id, const std::string& event);

    std::vector<NotifierMenuItem> items_;
    /// Identifiers are never used again, so that a click on an old menu hits nothing else.
    std::int32_t firstID_ = 1;
    std::uint32_t revision_ = 1;
    std::function<void(const std::string&)> onChosen_;
    std::unique_ptr<sdbus::IObject> object_;
};

} // namespace vellmark
