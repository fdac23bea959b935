#pragma once

#include "app/SystemMenuBar.h"

#include <QObject>

#include <memory>
#include <vector>

class QAction;
class QMenu;
class QWidget;

namespace vellmark {

/// The main menu: the system's menu bar where there is one; elsewhere its keys work in every window
/// and F10 opens it. Main thread.
class MainMenu final : public QObject {
public:
    explicit MainMenu(MainMenuEvents events);
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

    MainMenuEvents events_;
    std::vector<std::unique_ptr<QMenu>> menus_;
    std::vector<Entry> entries_;
    std::vector<QWidget*> windows_;
    std::unique_ptr<SystemMenuBar> systemBar_;
};

} // namespace vellmark
