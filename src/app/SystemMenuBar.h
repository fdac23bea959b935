#pragma once

#include "presentation/MainMenuContent.h"

#include <functional>
#include <memory>
#include <string_view>
#include <vector>

namespace vellmark {

/// What a menu asks of the application.
struct MainMenuEvents {
    std::function<void(std::string_view action)> choose;
    std::function<bool(std::string_view action)> isEnabled;
};

/// The menu bar that the system shows for the program in front. Main thread.
class SystemMenuBar {
public:
    virtual ~SystemMenuBar() = default;
    /// Replaces the menus, for example in another language.
    virtual void show(const std::vector<MenuContent>& menus) = 0;
};

/// Null where the system has none.
std::unique_ptr<SystemMenuBar> makeSystemMenuBar(MainMenuEvents events);

} // namespace vellmark
