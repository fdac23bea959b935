#pragma once

#include "app/SystemMenuBar.h"

#include <QObject>
#include <QPoint>
#include <QRect>

#include <functional>
#include <memory>
#include <vector>

class QAction;
class QMenu;
class QWidget;

namespace vellmark {

/// The main menu: the system's menu bar where there is one; elsewhere its keys work in every
/// window, F10 opens it, and windows may have a button for it. Main thread.
class MainMenu final : public QObject {
public:
    explicit MainMenu(MainMenuEvents events);
    ~MainMenu() override;

    /// Replaces the menus, for example in another language.
    void rebuild(const std::vector<MenuContent>& menus);
    /// Makes the menu's keys work in `window`. F10 shows all menus as one: above what `anchor`
    /// answers (on the screen), or at the window's upper corner.
    void attach(QWidget& window, std::function<QRect()> anchor = {});
    /// Whether the system shows the menu bar itself.
    bool isSystemBar() const { return systemBar_ != nullptr; }
    /// Shows all menus as one above `anchor`, with the first entry chosen.
    void popUp(const QRect& anchor);
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
    void popUp(QPoint place, bool isAbove);

    MainMenuEvents events_;
    std::vector<std::unique_ptr<QMenu>> menus_;
    std::vector<Entry> entries_;
    std::vector<QWidget*> windows_;
    std::unique_ptr<SystemMenuBar> systemBar_;
};

} // namespace vellmark
