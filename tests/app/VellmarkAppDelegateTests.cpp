#include "app/LaunchedApplication.h"
#include "app/WindowMemory.h"
#include "platform/Preferences.h"
#include "text/Catalog.h"
#include "text/Localization.h"
#include "ui/LegalWindow.h"
#include "ui/kit/SidebarEntry.h"
#include "ui/popover/AgentBlock.h"
#include "ui/report/ReportTextView.h"
#include "ui/report/SupportReportView.h"
#include "ui/setup/SetupAssistantView.h"

#include <QAction>
#include <QPlainTextEdit>
#include <QPointer>
#include <QSet>
#include <QStringList>
#include <QTimer>

#include <algorithm>
#include <chrono>

namespace vellmark::tests {
namespace {

class VellmarkAppDelegateTest : public LaunchedApplication {
protected:
    /// Does what a key with Control stands for in a window.
    static void pressShortcut(QWidget& window, Qt::Key key) {
        for (QAction* action : window.actions()) {
            if (action->shortcut() == QKeySequence(Qt::CTRL | key)) {
                return action->trigger();
            }
        }
    }

    /// The time is over for which a window is kept after it was closed, or opened.
    static void passTheWhile(QWidget& window) {
        int passed = 0;
        for (auto* timer : window.findChildren<QTimer*>()) {
            if (timer->isActive() && timer->interval() == WindowMemory::delayMilliseconds) {
                QMetaObject::invokeMethod(timer, "timeout", Qt::QueuedConnection);
                timer->stop();
                ++passed;
            }
        }
        EXPECT_EQ(passed, 1);
    }

    static QString selectedEntry(const QWidget& window) {
        for (const kit::SidebarEntry* entry : visibleParts<kit::SidebarEntry>(window)) {
            if (entry->isChecked()) {
                return entry->text();
            }
        }
        return {};
    }

    /// What the status item says.
    static QString toolTip() {
        for (const QWidget* window : QApplication::topLevelWidgets()) {
            if (window->isVisible() && window->toolTip().startsWith("Vellmark:")) {
                return window->toolTip();
            }
        }
        return {};
    }

    /// The texts of one language that are still to be seen, or told, though the other has others.
    static QStringList textsLeftIn(const std::string& former, const std::string& current) {
        QSet<QString> formers;
        QSet<QString> currents;
        for (const CatalogEntry& entry : catalogEntries()) {
            formers << QString::fromStdString(Localization(former).text(entry.key.view()));
            currents << QString::fromStdString(Localization(current).text(entry.key.view()));
        }
        QStringList left;
        const auto look = [&](const QString& text) {
            if (formers.contains(text) && !currents.contains(text)) {
                left << text;
            }
        };
        for (const QWidget* widget : QApplication::allWidgets()) {
            if (!widget->isVisible()) {
                continue;
            }
            for (const QString& text :
                 {widget->windowTitle(), widget->toolTip(), widget->accessibleName(),
                  widget->accessibleDescription(), widget->property("text").toString(),
                  widget->property("placeholderText").toString()}) {
                look(text);
            }
            for (const QAction* action : widget->actions()) {
                look(action->text());
            }
        }
        return left;
    }
};

TEST_F(VellmarkAppDelegateTest, DoesNothingInATestHost) {
    launch({.isRunningTests = true});
    EXPECT_EQ(outcome_, LaunchOutcome::testHost);
    EXPECT_FALSE(delegate_->applicationShouldHandleReopen(false));
    EXPECT_FALSE(visible<QWidget>());
}

TEST_F(VellmarkAppDelegateTest, ChangesEverythingThatIsOpenWithTheLanguage) {
    launch();
    ASSERT_TRUE(waitUntil([] { return toolTip().contains("93% used"); }));
    EXPECT_FALSE(visible<AgentMainWindowView>()) << "everything is set up";
    std::string before = "en";
    const auto change = [&](const std::string& code, const QString& where) {
        // At once: what the agents do meanwhile would draw much of it anew as well.
        delegate_->languageManager().choose(code);
        const QStringList left = textsLeftIn(before, code);
        EXPECT_TRUE(left.isEmpty()) << before << " to " << code << ", " << where.toStdString()
                                    << ": " << left.join(" | ").toStdString();
        EXPECT_EQ(QCoreApplication::translate("QLineEdit", "&Paste"),
                  QString::fromStdString(Localization(code).text("toolkit.paste")));
        before = code;
    };
    ASSERT_TRUE(opensPopover());
    change("it", "popover");
    EXPECT_TRUE(toolTip().contains("93% usato"));
    delegate_->showAboutFromMenu();
    auto* window = openWindow();
    ASSERT_TRUE(window);
    const auto actions = window->actions();
    const auto terms = std::ranges::find(
        actions, QString::fromStdString(Localization(before).text("legal.terms")), &QAction::text);
    ASSERT_NE(terms, actions.end());
    (*terms)->trigger();
    ASSERT_TRUE(visible<LegalWindow>());
    delegate_->showSupportReportFromMenu();
    ASSERT_TRUE(waitUntil([] { return visible<SupportReportView>()->text()->isVisible(); }));
    std::size_t next = 0;
    QStringList pages;
    for (kit::SidebarEntry* entry : visibleParts<kit::SidebarEntry>(*window)) {
        entry->click();
        pages << entry->text();
        change(std::string(catalogLanguages[next++ % catalogLanguages.size()]), pages.back());
    }
    EXPECT_GT(pages.size(), 5);
}

TEST_F(VellmarkAppDelegateTest, ReportTellsWhatTheStoreKnowsAndNothingOfItStays) {
    const auto left = sandbox_.machine().temporary / "vellmark-support-of-a-killed-run";
    fs::create_directory(left);
    launch();
    EXPECT_TRUE(waitUntil([&] { return !fs::exists(left); }));
    delegate_->showSupportReportFromMenu();
    auto* window = visible<SupportReportView>();
    ASSERT_TRUE(window);
    window->findChild<QPlainTextEdit*>()->setPlainText("It hung.");
    const auto text = [window] { return std::string(window->text()->rows().text()); };
    EXPECT_TRUE(waitUntil([&] { return text().find("What happened?\nIt hung.") < 2000; }));
    // Behind everything that the store still had to write, in the words of now.
    EXPECT_NE(text().find("vellmark: Refresh started"), std::string::npos);
    window->close();
    EXPECT_EQ(text(), "");
    delegate_->showSupportReportFromMenu();
    EXPECT_TRUE(waitUntil([&] { return text().find("It hung.") < 2000; }))
        << "a closed window loses no words";

    // While the agents are being asked, the program ends at once.
    window->close();
    delegate_->showSupportReportFromMenu();
    const auto start = std::chrono::steady_clock::now();
    delegate_.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

TEST_F(VellmarkAppDelegateTest, TakesTheMenusKeysInThePopover) {
    launch();
    ASSERT_TRUE(opensPopover());
    pressShortcut(*visible<Popover>(), Qt::Key_Comma);
    EXPECT_FALSE(visible<Popover>());
    ASSERT_TRUE(visible<AgentMainWindowView>());
    visible<AgentMainWindowView>()->close();
    ASSERT_TRUE(opensPopover());
    pressShortcut(*visible<Popover>(), Qt::Key_W);
    EXPECT_FALSE(visible<Popover>());
}

TEST_F(VellmarkAppDelegateTest, LeadsFromAnAgentInThePopoverToItsPage) {
    launch();
    ASSERT_TRUE(waitUntil([] { return toolTip().contains("93% used"); }));
    for (const char* agent : {"Claude", "Antigravity", "Antigravity"}) {
        ASSERT_TRUE(opensPopover());
        partNamed<AgentBlock>(*visible<Popover>(), agent)->click();
        EXPECT_FALSE(visible<Popover>());
        auto* window = visible<AgentMainWindowView>();
        ASSERT_TRUE(window);
        EXPECT_EQ(selectedEntry(*window), agent);
        window->close();
    }
}

TEST_F(VellmarkAppDelegateTest, ComesBackToThePageThatWasShownLast) {
    launch();
    auto* window = openWindow();
    ASSERT_TRUE(window);
    EXPECT_EQ(selectedEntry(*window), "Overview");
    pressKey(*window, Qt::Key_3, Qt::ControlModifier);
    ASSERT_EQ(selectedEntry(*window), "Claude");
    quit();
    launch();
    EXPECT_EQ(selectedEntry(*openWindow()), "Claude");
    // Settings are shown whatever page was shown last.
    delegate_->showSettingsFromMenu();
    EXPECT_EQ(selectedEntry(*visible<AgentMainWindowView>()), "Settings");
    // The page that acts when it is hidden is the one that a quit finds.
    pressKey(*visible<AgentMainWindowView>(), Qt::Key_6, Qt::ControlModifier);
    EXPECT_EQ(selectedEntry(*visible<AgentMainWindowView>()), "Activity");
}

TEST_F(VellmarkAppDelegateTest, LetsGoOfWhatHasBeenClosedForAWhileAndShowsItAgain) {
    launch();
    for (int opening = 0; opening < 2; ++opening) {
        ASSERT_TRUE(opensPopover());
        const QPointer<QWidget> popover = visible<Popover>();
        // Takes the popover's place.
        const QPointer<QWidget> window = openWindow();
        ASSERT_TRUE(window);
        EXPECT_FALSE(visible<Popover>());
        passTheWhile(*popover);
        ASSERT_TRUE(waitUntil([&] { return popover.isNull(); }));
        passTheWhile(*window);
        settle();
        EXPECT_TRUE(window && window->isVisible()) << "it is open";
        window->close();
        passTheWhile(*window);
        ASSERT_TRUE(waitUntil([&] { return window.isNull(); }));
    }
}

TEST_F(VellmarkAppDelegateTest, BeginsWithTheSetupAndThenTheTermsWhereSomethingIsMissing) {
    sandbox_.uninstall("codex");
    launch();
    ASSERT_TRUE(waitUntil([] { return visible<SetupAssistantView>() != nullptr; }));
    EXPECT_FALSE(visible<AgentMainWindowView>());
    EXPECT_FALSE(visible<LegalWindow>());
    EXPECT_EQ(visible<SetupAssistantView>()->windowTitle(), "Set Up Vellmark");
    delegate_->languageManager().choose("it");
    EXPECT_EQ(visible<SetupAssistantView>()->windowTitle(), "Configura Vellmark");
    visible<SetupAssistantView>()->close();
    ASSERT_TRUE(visible<LegalWindow>());
    quit();
    launch(); // put off: the terms alone
    ASSERT_TRUE(waitUntil([] { return visible<LegalWindow>() != nullptr; }));
    EXPECT_FALSE(visible<SetupAssistantView>());

    // The way out of the failure leads back, to what is left to do.
    ASSERT_TRUE(opensPopover());
    const auto wayOut = [] { return partNamed(*visible<Popover>(), "Install …"); };
    ASSERT_TRUE(waitUntil([&] { return wayOut() != nullptr; }));
    wayOut()->click();
    EXPECT_FALSE(visible<Popover>());
    auto* assistant = visible<SetupAssistantView>();
    ASSERT_TRUE(assistant);
    EXPECT_TRUE(waitUntil([&] {
        const auto* copy = partNamed(*assistant, "Copy command");
        return copy != nullptr && copy->accessibleDescription().startsWith("curl");
    }));
}

TEST_F(VellmarkAppDelegateTest, HelpLeadsToTheSupportReport) {
    launch();
    auto* window = openWindow();
    ASSERT_TRUE(window);
    for (const char* title : {"Help", "Support", "Support Report …"}) {
        auto* button = partNamed(*window, title);
        ASSERT_TRUE(button) << title;
        button->click();
        QApplication::processEvents();
    }
    EXPECT_TRUE(visible<SupportReportView>());
}

TEST_F(VellmarkAppDelegateTest, ShowsTheTermsOnceEverythingIsSetUpUntilTheyAreAccepted) {
    const auto press = [](const char* title) {
        auto* button = partNamed(*visible<LegalWindow>(), title);
        ASSERT_TRUE(button) << title;
        button->click();
    };
    for (const bool isFirst : {true, false}) {
        launch();
        ASSERT_TRUE(waitUntil([] { return visible<LegalWindow>() != nullptr; })) << isFirst;
        press("Privacy");
        press(isFirst ? "Close" : "Accept");
        EXPECT_FALSE(visible<LegalWindow>());
        quit();
    }
    const auto preferences = makePreferences(sandbox_.machine());
    EXPECT_EQ(preferences->boolean("SetupAssistantCompleted"), true);
    launch();
    EXPECT_FALSE(visible<LegalWindow>()) << "decided within the launch, once the setup is done";
    delegate_->showPrivacyFromMenu();
    ASSERT_TRUE(visible<LegalWindow>());
    press("Close");
}

TEST_F(VellmarkAppDelegateTest, EndsEveryAgentAtTermination) {
    sandbox_.play("claude", "deaf");
    sandbox_.play("codex", "hang");
    launch();
    ASSERT_TRUE(waitUntil([] { return livingChildCount() >= 2; }));
    delegate_->applicationWillTerminate();
    delegate_.reset();
    EXPECT_TRUE(sandbox_.survivors().empty());
}

} // namespace
} // namespace vellmark::tests
