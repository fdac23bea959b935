#pragma once

#include "presentation/MainMenuContent.h"

#include <QObject>

#include <functional>
#include <memory>
#include <vector>

class QAction;
class QMenu;
class QMenuBar;
class QWidget;

namespace vellmark {

/// The main menu as Qt has it: the system's menu bar on macOS; elsewhere its keys work in every
/// window and F10 opens it. Main thread.
class MainMenu final : public QObject {
public:
    struct Events {
        std::function<void(std::string_view action)> choose;
        std::function<bool(std::string_view action)> isEnabled;
    };
    explicit MainMenu(Events events);
    ~MainMenu() override;

    /// Replaces the menus, for example in another language.
    void rebuild(const std::vector<MenuContent>& menus);
    /// Makes the menu's keys work in `window`.
    void attach(QWidget& window);
    /// Asks again what is enabled.
    void validate();
    /// Does what the window in front or the widget with the focus is meant to do (copy, close …);
    /// false when `action` is none of these.
    bool performInResponderChain(std::string_view action);

private:
    struct Entry {
        QAction* action;
        std::string_view name;
    };
    void add(QMenu& menu, const MenuItemContent& item);
    void popUp(QWidget& window);

    Events events_;
    std::vector<std::unique_ptr<QMenu>> menus_;
    std::vector<Entry> entries_;
    std::vector<QWidget*> windows_;
    std::unique_ptr<QMenuBar> systemBar_;
};

} // namespace vellmark
