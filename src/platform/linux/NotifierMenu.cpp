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
    : onChosen_(std::move(onChosen)), object_(sdbus::createObject(bus, path)) {
    registerMethods();
    registerProperties();
    object_->registerSignal("LayoutUpdated")
        .onInterface(menuInterface)
        .withParameters<std::uint32_t, std::int32_t>();
    object_->registerSignal("ItemsPropertiesUpdated")
        .onInterface(menuInterface)
        .withParameters<std::vector<ItemProperties>,
                        std::vector<sdbus::Struct<std::int32_t, std::vector<std::string>>>>();
    object_->registerSignal("ItemActivationRequested")
        .onInterface(menuInterface)
        .withParameters<std::int32_t, std::uint32_t>();
    object_->finishRegistration();
}

void NotifierMenu::setItems(std::vector<NotifierMenuItem> items) {
    if (items == items_) {
        return;
    }
    firstID_ += static_cast<std::int32_t>(items_.size());
    items_ = std::move(items);
    ++revision_;
    object_->emitSignal("LayoutUpdated")
        .onInterface(menuInterface)
        .withArguments(revision_, rootID);
}

void NotifierMenu::registerMethods() {
    object_->registerMethod("GetLayout")
        .onInterface(menuInterface)
        .withInputParamNames("parentId", "recursionDepth", "propertyNames")
        .withOutputParamNames("revision", "layout")
        .implementedAs(
            [this](std::int32_t parent, std::int32_t depth, const std::vector<std::string>&) {
                return std::make_tuple(revision_, layout(parent, depth));
            });
    object_->registerMethod("GetGroupProperties")
        .onInterface(menuInterface)
        .implementedAs([this](std::vector<std::int32_t> ids, const std::vector<std::string>&) {
            std::vector<ItemProperties> answer;
            if (ids.empty()) {
                for (std::size_t index = 0; index < items_.size(); ++index) {
                    ids.push_back(firstID_ + static_cast<std::int32_t>(index));
                }
            }
            for (const std::int32_t id : ids) {
                if (id == rootID || item(id) != nullptr) {
                    answer.emplace_back(id, properties(id));
                }
            }
            return answer;
        });
    object_->registerMethod("GetProperty")
        .onInterface(menuInterface)
        .implementedAs([this](std::int32_t id, const std::string& name) {
            const Properties all = properties(id);
            const auto found = all.find(name);
            if (found == all.end()) {
                throw sdbus::Error("com.canonical.dbusmenu.Error", "no such property");
            }
            return found->second;
        });
    object_->registerMethod("Event")
        .onInterface(menuInterface)
        .implementedAs([this](std::int32_t id, const std::string& event, const sdbus::Variant&,
                              std::uint32_t) { handleEvent(id, event); });
    object_->registerMethod("EventGroup")
        .onInterface(menuInterface)
        .implementedAs([this](const std::vector<MenuEvent>& events) {
            std::vector<std::int32_t> unknown;
            for (const MenuEvent& event : events) {
                if (!handleEvent(event.get<0>(), event.get<1>())) {
                    unknown.push_back(event.get<0>());
                }
            }
            return unknown;
        });
    object_->registerMethod("AboutToShow")
        .onInterface(menuInterface)
        .implementedAs([](std::int32_t) { return false; });
    object_->registerMethod("AboutToShowGroup")
        .onInterface(menuInterface)
        .implementedAs([](const std::vector<std::int32_t>&) {
            return std::make_tuple(std::vector<std::int32_t>(), std::vector<std::int32_t>());
        });
}

void NotifierMenu::registerProperties() {
    object_->registerProperty("Version").onInterface(menuInterface).withGetter([] {
        return menuVersion;
    });
    object_->registerProperty("TextDirection").onInterface(menuInterface).withGetter([] {
        return std::string("ltr");
    });
    object_->registerProperty("Status").onInterface(menuInterface).withGetter([] {
        return std::string("normal");
    });
    object_->registerProperty("IconThemePath").onInterface(menuInterface).withGetter([] {
        return std::vector<std::string>();
    });
}

const NotifierMenuItem* NotifierMenu::item(std::int32_t id) const {
    const std::int32_t index = id - firstID_;
    if (id == rootID || index < 0 || index >= static_cast<std::int32_t>(items_.size())) {
        return nullptr;
    }
    return &items_[static_cast<std::size_t>(index)];
}

NotifierMenu::Properties NotifierMenu::properties(std::int32_t id) const {
    if (id == rootID) {
        return {{"children-display", sdbus::Variant(std::string("submenu"))}};
    }
    const NotifierMenuItem* found = item(id);
    if (found == nullptr) {
        return {};
    }
    if (found->action.empty()) {
        return {{"type", sdbus::Variant(std::string("separator"))}};
    }
    return {{"label", sdbus::Variant(escapedLabel(found->label))},
            {"enabled", sdbus::Variant(found->isEnabled)}};
}

NotifierMenu::Layout NotifierMenu::layout(std::int32_t parent, std::int32_t depth) const {
    std::vector<sdbus::Variant> children;
    if (parent == rootID && depth != 0) {
        for (std::size_t index = 0; index < items_.size(); ++index) {
            const std::int32_t id = firstID_ + static_cast<std::int32_t>(index);
            children.emplace_back(Layout{id, properties(id), std::vector<sdbus::Variant>()});
        }
    }
    return Layout{parent, properties(parent), std::move(children)};
}

bool NotifierMenu::handleEvent(std::int32_t id, const std::string& event) {
    const NotifierMenuItem* found = item(id);
    if (found == nullptr) {
        return id == rootID;
    }
    if (event == "clicked" && found->isEnabled && !found->action.empty()) {
        onChosen_(std::string(found->action));
    }
    return true;
}

} // namespace vellmark
