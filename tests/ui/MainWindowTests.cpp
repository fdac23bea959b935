#include "screenshots/SampleStates.h"
#include "support/Matchers.h"
#include "ui/QtEnvironment.h"
#include "ui/kit/FocusRing.h"
#include "ui/kit/Notice.h"
#include "ui/kit/SidebarEntry.h"
#include "ui/window/AgentMainWindowView.h"
#include "ui/window/AgentSummaryCard.h"
#include "ui/window/WindowPage.h"

#include <QScrollArea>

#include <algorithm>

namespace vellmark::tests {
namespace {

class MainWindow : public ::testing::Test {
protected:
    void show(const UsageState& state) {
        navigation.onChange = [this, state] { fill(state); };
        fill(state);
        view.show();
    }
    void fill(const UsageState& state) {
        const Localization words = samples::words("en");
        const AgentPage page = shownPage(navigation.selection(), state);
        MainWindowContent shown{sidebarItems(state, samples::now(), words), page,
                                contentOf(page.kind, state, words)};
        if (hasMenuButton) {
            shown.menuButton = menuButton(words);
        }
        view.setContent(shown);
    }
    /// Of the pages that are come to here nothing but the overview has anything on it.
    static PageContent contentOf(AgentPage::Kind kind, const UsageState& state,
                                 const Localization& words) {
        if (kind == AgentPage::Kind::overview) {
            return overviewPageContent(state, samples::now(), words);
        }
        if (kind == AgentPage::Kind::provider) {
            return AgentPageContent();
        }
        if (kind == AgentPage::Kind::history) {
            return HistoryPageContent();
        }
        return SettingsPageContent();
    }
    std::vector<kit::SidebarEntry*> entries() {
        auto result = visibleParts<kit::SidebarEntry>(view);
        std::ranges::sort(result, {}, [](const QWidget* entry) { return entry->y(); });
        return result;
    }
    bool says(const QString& words) { return tests::says(view, words); }

    RecordedActions recorded;
    AgentNavigationState navigation;
    bool hasMenuButton = false;
    AgentMainWindowView view{{.program = recorded.actions(), .openMenu = recorded.note("openMenu")},
                             navigation};
};

TEST_F(MainWindow, ListsThePagesAndShowsTheSelectedOne) {
    show(samples::normal());
    ASSERT_EQ(entries().size(), 9U);
    EXPECT_EQ(tabStops(view).front(), entries()[0]);
    EXPECT_TRUE(entries()[0]->isChecked());
    EXPECT_EQ(entries()[2]->accessibleName(), "Claude, 16% left");
    entries()[2]->click();
    EXPECT_EQ(navigation.selection(), AgentPage::provider(AgentProviderID::claude()));
    EXPECT_TRUE(entries()[2]->isChecked());
    const QWidget* agentsPage = view.page();
    // From a menu.
    navigation.select(AgentPage::of(AgentPage::Kind::settings));
    EXPECT_TRUE(entries()[6]->isChecked());
    EXPECT_TRUE(view.page()->isVisible());
    EXPECT_FALSE(agentsPage->isVisible());
}

TEST_F(MainWindow, GivesTheOverviewThePlaceOfAnAgentThatWasDisabledAndKeepsTheKeyboard) {
    show(samples::normal());
    entries()[3]->setFocus(Qt::TabFocusReason);
    entries()[3]->click();
    EXPECT_EQ(navigation.selection(), AgentPage::provider(AgentProviderID::antigravity()));
    show(samples::healthy());
    EXPECT_EQ(entries().size(), 8U);
    EXPECT_TRUE(entries()[0]->isChecked());
    EXPECT_FALSE(says("Antigravity"));
    EXPECT_TRUE(says("Claude"));
    EXPECT_EQ(view.focusWidget(), entries()[0]);
}

TEST_F(MainWindow, BringsTheKeyboardAlongAndBackToWhereItWas) {
    show(samples::normal());
    auto* card = partNamed<AgentSummaryCard>(view, "Claude");
    ASSERT_NE(card, nullptr);
    card->setFocus(Qt::TabFocusReason);
    navigation.select(AgentPage::of(AgentPage::Kind::settings));
    ASSERT_NE(view.focusWidget(), nullptr);
    EXPECT_TRUE(view.focusWidget()->isVisibleTo(&view)) << "on the page that came";
    EXPECT_FALSE(entries()[0]->parentWidget()->isAncestorOf(view.focusWidget()));
    navigation.goBack();
    EXPECT_EQ(view.focusWidget(), card);
    pressKey(view, Qt::Key_F6);
    navigation.select(AgentPage::of(AgentPage::Kind::settings));
    EXPECT_EQ(view.focusWidget(), entries()[6]) << "it was not on the page that went";
    navigation.goBack();
    EXPECT_EQ(view.focusWidget(), entries()[0]);
    pressKey(view, Qt::Key_F6);
    EXPECT_EQ(view.focusWidget(), card);
    EXPECT_TRUE(kit::FocusRing::isAnyShown());
}

TEST_F(MainWindow, GoesItsWayByKeysAndByTheButtonsOfTheMouse) {
    show(samples::normal());
    const auto at = [this] { return navigation.selection().kind; };
    const auto pressButton = [this](Qt::MouseButton button) {
        // On a control, which has no use for it.
        sendMouse(*entries()[1], QEvent::MouseButtonPress, {4, 4}, button);
    };
    pressKey(view, Qt::Key_5, Qt::ControlModifier);
    EXPECT_EQ(at(), AgentPage::Kind::history);
    pressKey(view, Qt::Key_7, Qt::ControlModifier);
    EXPECT_EQ(at(), AgentPage::Kind::settings);
    pressKey(view, Qt::Key_Left, Qt::AltModifier);
    EXPECT_EQ(at(), AgentPage::Kind::history);
    pressButton(Qt::BackButton);
    EXPECT_EQ(at(), AgentPage::Kind::overview);
    pressButton(Qt::ForwardButton);
    EXPECT_EQ(at(), AgentPage::Kind::history);
    pressKey(view, Qt::Key_Right, Qt::AltModifier);
    EXPECT_EQ(at(), AgentPage::Kind::settings);
}

TEST_F(MainWindow, ReachesEverythingOnASmallScreen) {
    view.setMinimumSize(0, 0);
    view.resize(880, 420);
    show(samples::manyAgents());
    for (QWidget* stop : tabStops(view)) {
        stop->setFocus(Qt::TabFocusReason);
        // Whoever goes by Tab is taken along by the scroll area.
        for (QWidget* area = stop->parentWidget(); area != nullptr; area = area->parentWidget()) {
            if (auto* scroller = dynamic_cast<QScrollArea*>(area)) {
                scroller->ensureWidgetVisible(stop);
            }
        }
        const QRect place(stop->mapTo(&view, QPoint(0, 0)), stop->size());
        EXPECT_TRUE(view.rect().intersects(place)) << stop->accessibleName().toStdString();
        EXPECT_FALSE(stop->visibleRegion().isEmpty()) << stop->accessibleName().toStdString();
    }
}

TEST_F(MainWindow, OffersTheMenuOnlyWhereTheSystemShowsNone) {
    const auto menu = [this] { return partNamed(view, "Menu"); };
    show(samples::normal());
    EXPECT_EQ(menu(), nullptr);
    hasMenuButton = true;
    show(samples::normal());
    ASSERT_NE(menu(), nullptr);
    menu()->click();
    EXPECT_THAT(recorded.calls, ElementsAre("openMenu"));
    EXPECT_TRUE(view.frameGeometry().contains(view.menuAnchor()));
}

TEST_F(MainWindow, ShowsTheFocusRingOfEveryControlWhole) {
    show(samples::failed());
    ASSERT_TRUE(becomesActive(view));
    expectFocusRingsAreWhole(view);
}

TEST_F(MainWindow, TakesTheFocusRingBackFromAnotherWindowUnlessAPressHadRemovedIt) {
    show(samples::normal());
    const std::vector<kit::SidebarEntry*> pages = entries();
    QWidget other;
    other.show();
    const auto leaveAndReturn = [&] {
        ASSERT_TRUE(becomesActive(other));
        EXPECT_FALSE(kit::FocusRing::isAnyShown());
        ASSERT_TRUE(becomesActive(view));
    };
    ASSERT_TRUE(becomesActive(view));
    pages[1]->setFocus(Qt::TabFocusReason);
    leaveAndReturn();
    EXPECT_TRUE(kit::FocusRing::isAnyShown());
    pages[2]->setFocus(Qt::MouseFocusReason);
    leaveAndReturn();
    EXPECT_FALSE(kit::FocusRing::isAnyShown());
}

TEST_F(MainWindow, SaysWhyFilesAreNotWrittenForAsLongAsThatLasts) {
    const auto notices = [this] {
        return std::ranges::count_if(view.findChildren<QWidget*>(), [](const QWidget* part) {
            return part->isVisible() && dynamic_cast<const kit::Notice*>(part) != nullptr;
        });
    };
    show(samples::unwritten());
    EXPECT_EQ(notices(), 2) << "beside the verdict";
    show(samples::normal());
    EXPECT_EQ(notices(), 1);
}

TEST_F(MainWindow, LeadsToAgentsAndOutOfFailures) {
    show(samples::failed());
    for (QWidget* stop : tabStops(view)) {
        if (dynamic_cast<kit::SidebarEntry*>(stop) == nullptr) {
            stop->setFocus(Qt::TabFocusReason);
            pressKey(view, Qt::Key_Return);
        }
    }
    EXPECT_THAT(recorded.calls, ElementsAre("refresh", "openProvider codex", "setUpAgent codex",
                                            "openProvider claude", "setUpAgent claude",
                                            "openProvider antigravity"));
}

} // namespace
} // namespace vellmark::tests
