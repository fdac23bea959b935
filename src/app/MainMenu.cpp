#include "app/MainMenu.h"

#include <QAction>
#include <QApplication>
#include <QKeyEvent>
#include <QKeySequence>
#include <QMenu>
#include <QShortcut>
#include <QWidget>

#include <algorithm>

namespace vellmark {

namespace {
constexpr int popUpGap = 4;
constexpr QPoint cornerOffset(8, 8);
} // namespace

MainMenu::MainMenu(MainMenuEvents events)
    : events_(std::move(events)), systemBar_(makeSystemMenuBar(events_)) {}

MainMenu::~MainMenu() = default;

void MainMenu::rebuild(const std::vector<MenuContent>& menus) {
    if (systemBar_) {
        systemBar_->show(menus);
        return;
    }
    entries_.clear();
    menus_.clear();
    for (const MenuContent& content : menus) {
        auto menu = std::make_unique<QMenu>(QString::fromStdString(content.title));
        connect(menu.get(), &QMenu::aboutToShow, this, &MainMenu::validate);
        for (const MenuItemContent& item : content.items) {
            add(*menu, item);
        }
        menus_.push_back(std::move(menu));
    }
    for (QWidget* window : windows_) {
        for (const Entry& entry : entries_) {
            window->addAction(entry.action);
        }
    }
    validate();
}

void MainMenu::add(QMenu& menu, const MenuItemContent& item) {
    if (item.isSeparator()) {
        menu.addSeparator();
        return;
    }
    QAction* action = menu.addAction(QString::fromStdString(item.title));
    if (item.key != 0) {
        action->setShortcut(QKeySequence(Qt::CTRL | Qt::Key(QChar(item.key).toUpper().unicode())));
    }
    connect(action, &QAction::triggered, this,
            [this, name = item.action] { events_.choose(name); });
    entries_.push_back({action, item.action});
}

void MainMenu::attach(QWidget& window, std::function<QRect()> anchor) {
    windows_.push_back(&window);
    connect(&window, &QObject::destroyed, this, [this, gone = &window] {
        windows_.erase(std::remove(windows_.begin(), windows_.end(), gone), windows_.end());
    });
    if (systemBar_) {
        return;
    }
    for (const Entry& entry : entries_) {
        window.addAction(entry.action);
    }
    auto* open = new QShortcut(Qt::Key_F10, &window);
    connect(open, &QShortcut::activated, this, [this, at = &window, anchor = std::move(anchor)] {
        anchor ? popUp(anchor()) : popUp(at->mapToGlobal(cornerOffset), false);
    });
}

void MainMenu::popUp(const QRect& anchor) {
    popUp(anchor.topLeft() - QPoint(0, popUpGap), true);
}

void MainMenu::popUp(QPoint place, bool isAbove) {
    QMenu root;
    for (const auto& menu : menus_) {
        root.addMenu(menu.get());
    }
    if (isAbove) {
        place.ry() -= root.sizeHint().height();
    }
    root.exec(place, root.actions().value(0));
}

bool MainMenu::performInResponderChain(std::string_view action) {
    // An open popover is never the active window, but has the keys.
    QWidget* popover = QApplication::activePopupWidget();
    QWidget* window = popover ? popover : QApplication::activeWindow();
    QWidget* focus = QApplication::focusWidget();
    if (action == menuAction::closeWindow) {
        if (window) {
            window->close();
        }
    } else if (action == menuAction::minimize) {
        if (window && !popover) {
            window->showMinimized();
        }
    } else if (action == menuAction::hide) {
        for (QWidget* each : windows_) {
            each->hide();
        }
    } else if (action == menuAction::copy || action == menuAction::selectAll) {
        const QByteArray method = QByteArray(action.data(), qsizetype(action.size())) + "()";
        if (focus && focus->metaObject()->indexOfMethod(method) >= 0) {
            QMetaObject::invokeMethod(focus, std::string(action).c_str());
        } else if (focus) {
            // Our own controls know the key.
            const Qt::Key key = action == menuAction::copy ? Qt::Key_C : Qt::Key_A;
            QKeyEvent press(QEvent::KeyPress, key, Qt::ControlModifier);
            // Not by the application, which would look for a shortcut first and find this one
            // again.
            static_cast<QObject*>(focus)->event(&press);
        }
    } else {
        return false;
    }
    return true;
}

void MainMenu::validate() {
    for (const Entry& entry : entries_) {
        entry.action->setEnabled(events_.isEnabled(entry.name));
    }
}

} // namespace vellmark
