#include "platform/linux/NotifierMenu.h"

#include <tuple>
#include <utility>

namespace vellmark {
namespace {

constexpr auto menuInterface = "com.canonical.dbusmenu";
constexpr std::uint32_t menuVersion = 3;
constexpr std::int32_t rootID = 0;

/// In labels an underscore marks the letter of a shortcut; a real one is doubled.
std::string escapedLabel(const std::string& label) {
    std::string escaped;
    for (const char character : label) {
        escaped += character;
        if (character == '_') {
            escaped += '_';
        }
    }
    return escaped;
}

} // namespace

NotifierMenu::NotifierMenu(sdbus::IConnection& bus, const std::string& path,
                           std::function<void(const std::string&)> onChosen)
    : onChosen_(std::move(onChosen)), object_(sdbus::createObject(bus, sdbus::ObjectPath(path))) {
    bus::Interface interface(*object_, menuInterface);
    addMethods(interface);
    addProperties(interface);
    interface.signal<std::uint32_t, std::int32_t>("LayoutUpdated")
        .signal<std::vector<ItemProperties>,
                std::vector<sdbus::Struct<std::int32_t, std::vector<std::string>>>>(
            "ItemsPropertiesUpdated")
        .signal<std::int32_t, std::uint32_t>("ItemActivationRequested")
        .publish();
}

void NotifierMenu::setItems(std::vector<NotifierMenuItem> items) {
    if (items == items_) {
        return;
    }
    firstID_ += static_cast<std::int32_t>(lines_.size());
    items_ = std::move(items);
    lines_.clear();
    topmost_ = enter(items_);
    ++revision_;
    object_->emitSignal("LayoutUpdated")
        .onInterface(menuInterface)
        .withArguments(revision_, rootID);
}

std::vector<std::int32_t> NotifierMenu::enter(const std::vector<NotifierMenuItem>& items) {
    std::vector<std::int32_t> ids;
    for (const NotifierMenuItem& item : items) {
        const std::size_t place = lines_.size();
        ids.push_back(firstID_ + static_cast<std::int32_t>(place));
        lines_.push_back({&item, {}});
        auto below = enter(item.items);
        lines_[place].below = std::move(below);
    }
    return ids;
}

void NotifierMenu::addMethods(bus::Interface& interface) {
    interface.method("GetLayout", [this](std::int32_t parent, std::int32_t depth,
                                         const std::vector<std::string>&) {
        return std::make_tuple(revision_, layout(parent, depth));
    });
    interface.method("GetGroupProperties",
                     [this](std::vector<std::int32_t> ids, const std::vector<std::string>&) {
                         std::vector<ItemProperties> answer;
                         if (ids.empty()) {
                             for (std::size_t index = 0; index < lines_.size(); ++index) {
                                 ids.push_back(firstID_ + static_cast<std::int32_t>(index));
                             }
                         }
                         for (const std::int32_t id : ids) {
                             if (id == rootID || line(id) != nullptr) {
                                 answer.emplace_back(id, properties(id));
                             }
                         }
                         return answer;
                     });
    interface.method("GetProperty", [this](std::int32_t id, const std::string& name) {
        const Properties all = properties(id);
        const auto found = all.find(name);
        if (found == all.end()) {
            throw sdbus::Error(bus::ErrorName("com.canonical.dbusmenu.Error"), "no such property");
        }
        return found->second;
    });
    interface.method("Event",
                     [this](std::int32_t id, const std::string& event, const sdbus::Variant&,
                            std::uint32_t) { handleEvent(id, event); });
    interface.method("EventGroup", [this](const std::vector<MenuEvent>& events) {
        std::vector<std::int32_t> unknown;
        for (const MenuEvent& event : events) {
            if (!handleEvent(event.get<0>(), event.get<1>())) {
                unknown.push_back(event.get<0>());
            }
        }
        return unknown;
    });
    interface.method("AboutToShow", [](std::int32_t) { return false; });
    interface.method("AboutToShowGroup", [](const std::vector<std::int32_t>&) {
        return std::make_tuple(std::vector<std::int32_t>(), std::vector<std::int32_t>());
    });
}

void NotifierMenu::addProperties(bus::Interface& interface) {
    interface.property("Version", [] { return menuVersion; });
    interface.property("TextDirection", [] { return std::string("ltr"); });
    interface.property("Status", [] { return std::string("normal"); });
    interface.property("IconThemePath", [] { return std::vector<std::string>(); });
}

const NotifierMenu::Line* NotifierMenu::line(std::int32_t id) const {
    const std::int32_t index = id - firstID_;
    if (id == rootID || index < 0 || index >= static_cast<std::int32_t>(lines_.size())) {
        return nullptr;
    }
    return &lines_[static_cast<std::size_t>(index)];
}

NotifierMenu::Properties NotifierMenu::properties(std::int32_t id) const {
    const auto submenu = [] { return sdbus::Variant(std::string("submenu")); };
    if (id == rootID) {
        return {{"children-display", submenu()}};
    }
    const Line* found = line(id);
    if (found == nullptr) {
        return {};
    }
    if (found->item->label.empty()) {
        return {{"type", sdbus::Variant(std::string("separator"))}};
    }
    Properties properties{{"label", sdbus::Variant(escapedLabel(found->item->label))},
                          {"enabled", sdbus::Variant(found->item->isEnabled)}};
    if (!found->below.empty()) {
        properties.emplace("children-display", submenu());
    }
    return properties;
}

/// `depth`: how many levels below it; below 0 for all.
NotifierMenu::Layout NotifierMenu::layout(std::int32_t parent, std::int32_t depth) const {
    std::vector<sdbus::Variant> children;
    const Line* const found = line(parent);
    if (depth != 0 && (parent == rootID || found != nullptr)) {
        for (const std::int32_t id : parent == rootID ? topmost_ : found->below) {
            children.emplace_back(layout(id, depth - 1));
        }
    }
    return Layout{parent, properties(parent), std::move(children)};
}

bool NotifierMenu::handleEvent(std::int32_t id, const std::string& event) {
    const Line* found = line(id);
    if (found == nullptr) {
        return id == rootID;
    }
    const NotifierMenuItem& item = *found->item;
    if (event == "clicked" && item.isEnabled && !item.action.empty()) {
        onChosen_(std::string(item.action));
    }
    return true;
}

} // namespace vellmark
