#include "app/LaunchedApplication.h"
#include "ui/kit/FocusRing.h"
#include "ui/report/ReportTextView.h"
#include "ui/report/SupportReportView.h"
#include "ui/setup/SetupAssistantView.h"
#include "ui/window/WindowPage.h"

#include <QAbstractItemView>
#include <QAccessible>
#include <QApplication>
#include <QLabel>
#include <QMenu>
#include <QProgressBar>
#include <gmock/gmock.h>

#include <algorithm>
#include <set>
#include <string>

namespace vellmark::tests {
namespace {

using ::testing::IsSupersetOf;

bool takesKeyboard(const QWidget& widget) {
    return (widget.focusPolicy() & Qt::TabFocus) != 0 && widget.isEnabled() &&
           widget.focusProxy() == nullptr;
}

/// Everything in a window that Tab must reach.
std::vector<QWidget*> tabTargets(QWidget& window) {
    auto targets = visibleParts<QWidget>(window);
    std::erase_if(targets, [&](const QWidget* widget) {
        return widget->window() != &window || !takesKeyboard(*widget);
    });
    return targets;
}

/// For messages: what a screen reader calls it and where it stands.
std::string nameOf(const QWidget& widget) {
    QAccessibleInterface* told =
        QAccessible::queryAccessibleInterface(const_cast<QWidget*>(&widget));
    const QPoint place = widget.mapTo(widget.window(), QPoint(0, 0));
    return told->text(QAccessible::Name).toStdString() + " (" + typeid(widget).name() + " at " +
           std::to_string(place.x()) + ", " + std::to_string(place.y()) + ")";
}

/// What assistive software finds in a window.
class SpokenTree {
public:
    explicit SpokenTree(QWidget& window) { visit(*QAccessible::queryAccessibleInterface(&window)); }

    bool tellsOf(QWidget* widget) const { return told_.contains(widget); }
    const std::set<std::string>& headings() const { return headings_; }

private:
    void visit(QAccessibleInterface& told) {
        if (!told.isValid() || told.state().invisible) {
            return;
        }
        told_.insert(told.object());
        const QString name = told.text(QAccessible::Name);
        if (told.role() == QAccessible::Heading) {
            headings_.insert(name.toStdString());
        }
        const auto* widget = qobject_cast<const QWidget*>(told.object());
        if (widget != nullptr && takesKeyboard(*widget)) {
            EXPECT_FALSE(name.isEmpty()) << nameOf(*widget);
            EXPECT_FALSE(told.role() == QAccessible::Client || told.role() == QAccessible::NoRole)
                << nameOf(*widget);
        }
        expectValue(told);
        for (int index = 0; index < told.childCount(); ++index) {
            QAccessibleInterface* child = told.child(index);
            if (child == nullptr) {
                ADD_FAILURE() << "child " << index << " of " << name.toStdString();
            } else {
                visit(*child);
            }
        }
    }

    static void expectValue(QAccessibleInterface& told) {
        const std::string name = told.text(QAccessible::Name).toStdString();
        switch (told.role()) {
        case QAccessible::ProgressBar: {
            EXPECT_NE(name, "");
            ASSERT_NE(told.valueInterface(), nullptr) << name;
            const double value = told.valueInterface()->currentValue().toDouble();
            EXPECT_TRUE(value >= 0 && value <= 100) << name;
            const QStringList actions = told.actionInterface() != nullptr
                                            ? told.actionInterface()->actionNames()
                                            : QStringList();
            EXPECT_FALSE(actions.contains(QAccessibleActionInterface::increaseAction())) << name;
            break;
        }
        case QAccessible::CheckBox:
            EXPECT_TRUE(told.state().checkable) << name;
            break;
        case QAccessible::ComboBox:
            EXPECT_FALSE(told.text(QAccessible::Value).isEmpty()) << name;
            break;
        case QAccessible::ListItem:
        case QAccessible::PageTab:
            EXPECT_NE(name, "");
            break;
        default:
            break;
        }
    }

    std::set<QObject*> told_;
    std::set<std::string> headings_;
};

class AccessibilityTest : public LaunchedApplication {
protected:
    void SetUp() override { launch(); }

    static void expectEverythingIsTold(QWidget& window) {
        const SpokenTree tree(window);
        EXPECT_FALSE(
            QAccessible::queryAccessibleInterface(&window)->text(QAccessible::Name).isEmpty());
        for (QWidget* target : tabTargets(window)) {
            EXPECT_TRUE(tree.tellsOf(target)) << nameOf(*target);
        }
        if (const auto* view = dynamic_cast<const AgentMainWindowView*>(&window)) {
            EXPECT_TRUE(tree.headings().contains(view->page()->title().toStdString()));
        }
    }

    /// Tab leads once through everything that takes the keyboard, in the order that the page says,
    /// with the focus in sight.
    static void expectTabLeadsEverywhere(QWidget& window) {
        ASSERT_TRUE(waitUntil([&] {
            window.activateWindow();
            return window.isActiveWindow();
        }));
        if (window.focusWidget() != nullptr) {
            window.focusWidget()->clearFocus();
        }
        const std::vector<QWidget*> targets = tabTargets(window);
        std::vector<QWidget*> reached;
        for (std::size_t turn = 0; turn <= targets.size(); ++turn) {
            pressKey(window, Qt::Key_Tab);
            QWidget* focused = window.focusWidget();
            ASSERT_NE(focused, nullptr);
            if (std::ranges::find(reached, focused) != reached.end()) {
                break;
            }
            reached.push_back(focused);
            expectFocusIsSeen(*focused);
        }
        for (QWidget* target : targets) {
            EXPECT_TRUE(std::ranges::find(reached, target) != reached.end()) << nameOf(*target);
        }
        if (const auto* view = dynamic_cast<const AgentMainWindowView*>(&window)) {
            expectOrder(view->page()->controls(), reached);
            for (QWidget* target : targets) {
                EXPECT_TRUE(!view->page()->isAncestorOf(target) ||
                            std::ranges::count(view->page()->controls(), target) == 1)
                    << nameOf(*target);
            }
        }
    }

    static void expectFocusIsSeen(QWidget& focused) {
        // A list marks the row, not itself.
        const auto* list = qobject_cast<QAbstractItemView*>(&focused);
        EXPECT_TRUE(list != nullptr ? list->currentIndex().isValid() : kit::FocusRing::isAnyShown())
            << nameOf(focused);
        const QWidget& seen = list != nullptr ? *list->viewport() : focused;
        EXPECT_FALSE(seen.visibleRegion().isEmpty()) << nameOf(focused);
    }

    static void expectOrder(std::vector<QWidget*> wanted, std::vector<QWidget*> reached) {
        const auto isReached = [&](QWidget* control) {
            return std::ranges::find(reached, control) != reached.end();
        };
        std::erase_if(wanted, [&](QWidget* control) { return !isReached(control); });
        std::erase_if(reached, [&](QWidget* control) {
            return std::ranges::find(wanted, control) == wanted.end();
        });
        EXPECT_EQ(wanted, reached);
    }
};

TEST_F(AccessibilityTest, EveryPageIsToldAndReachedByKeys) {
    auto* window = openWindow();
    ASSERT_NE(window, nullptr);
    // The first agent has been read.
    ASSERT_TRUE(waitUntil([&] { return window->findChild<QProgressBar*>() != nullptr; }));
    std::set<std::string> titles;
    for (int key = Qt::Key_1; key <= Qt::Key_9; ++key) {
        pressKey(*window, key, Qt::ControlModifier);
        const std::string title = window->page()->title().toStdString();
        SCOPED_TRACE(title);
        titles.insert(title);
        expectEverythingIsTold(*window);
        expectTabLeadsEverywhere(*window);
    }
    EXPECT_THAT(titles, IsSupersetOf({"Overview", "History", "Activity", "Settings", "Help"}));
}

TEST_F(AccessibilityTest, EveryOtherWindowIsToldAndReachedByKeys) {
    using Delegate = VellmarkAppDelegate;
    for (const auto show : {&Delegate::showAboutFromMenu, &Delegate::showTermsFromMenu,
                            &Delegate::showPrivacyFromMenu, &Delegate::showSupportReportFromMenu}) {
        ((*delegate_).*show)();
        for (QWidget* window : QApplication::topLevelWidgets()) {
            // The strip is no window that takes the keyboard.
            if (window->isVisible() &&
                !window->windowFlags().testFlag(Qt::WindowDoesNotAcceptFocus) &&
                dynamic_cast<QMenu*>(window) == nullptr) {
                SCOPED_TRACE(window->windowTitle().toStdString());
                expectEverythingIsTold(*window);
            }
        }
    }
}

TEST_F(AccessibilityTest, EveryStepOfTheSetupIsToldAndReachedByKeys) {
    // Codex is ready; one can be installed, at another somebody can log in.
    quit();
    sandbox_.uninstall("claude");
    sandbox_.signOutOfAntigravity();
    launch();
    ASSERT_TRUE(waitUntil([] { return visible<SetupAssistantView>() != nullptr; }));
    auto* assistant = visible<SetupAssistantView>();
    std::set<QString> titles;
    for (int step = 0; step < 4; ++step) {
        const QString title = assistant->findChild<QLabel*>()->text();
        SCOPED_TRACE(title.toStdString());
        titles.insert(title);
        expectEverythingIsTold(*assistant);
        EXPECT_TRUE(SpokenTree(*assistant).headings().contains(title.toStdString()));
        expectTabLeadsEverywhere(*assistant);
        assistant->controls().back()->setFocus(Qt::TabFocusReason);
        pressKey(*assistant, Qt::Key_Return);
        settle();
    }
    EXPECT_EQ(titles.size(), 4U);
    EXPECT_FALSE(assistant->isVisible()) << "the last step finishes it";
}

TEST_F(AccessibilityTest, SupportReportIsToldAndReachedByKeys) {
    delegate_->showSupportReportFromMenu();
    auto* window = visible<SupportReportView>();
    ASSERT_NE(window, nullptr);
    expectEverythingIsTold(*window); // while it is being made, too
    ASSERT_TRUE(waitUntil([&] { return window->text()->isVisible(); }));
    expectEverythingIsTold(*window);
    expectTabLeadsEverywhere(*window);
    QAccessibleInterface* text = QAccessible::queryAccessibleInterface(window->text());
    ASSERT_NE(text->textInterface(), nullptr);
    EXPECT_EQ(text->textInterface()->text(0, 23), "Vellmark support report");
}

TEST_F(AccessibilityTest, EveryTabOfThePopoverIsTold) {
    ASSERT_TRUE(opensPopover());
    auto* popover = visible<Popover>();
    for (int key = Qt::Key_1; key <= Qt::Key_4; ++key) {
        pressKey(*popover, key, Qt::ControlModifier);
        expectEverythingIsTold(*popover);
    }
}

} // namespace
} // namespace vellmark::tests
