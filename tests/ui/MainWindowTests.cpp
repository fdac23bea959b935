#include "screenshots/SampleStates.h"
#include "ui/QtEnvironment.h"
#include "ui/kit/FocusRing.h"
#include "ui/kit/SidebarEntry.h"
#include "ui/window/AgentMainWindowView.h"
#include "ui/window/AgentSummaryCard.h"
#include "ui/window/WindowPage.h"

#include <QLabel>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vellmark {
namespace {

using ::testing::ElementsAre;
using testing::pressKey;
using testing::RecordedActions;
using testing::tabStops;
using testing::waitUntil;

class MainWindow : public ::testing::Test {
protected:
    void show(const UsageState& state, bool asksForSetup = false) {
        navigation.onChange = [this, state, asksForSetup] { fill(state, asksForSetup); };
        fill(state, asksForSetup);
        view.show();
    }
    void fill(const UsageState& state, bool asksForSetup) {
        const Localization words = samples::words("en");
        const AgentPage page = shownPage(navigation.selection(), state);
        PageContent content = PageHeadContent{.title = "Page"};
        if (page.kind == AgentPage::Kind::overview) {
            content = overviewPageContent(state, samples::now(), words, asksForSetup);
        }
        view.setContent({sidebarItems(state, samples::now(), words), page, content});
    }
    std::vector<kit::SidebarEntry*> entries() {
        std::vector<kit::SidebarEntry*> result;
        for (QWidget* stop : tabStops(view)) {
            if (auto* entry = dynamic_cast<kit::SidebarEntry*>(stop)) {
                result.push_back(entry);
            }
        }
        return result;
    }
    const kit::FocusRing* findRing() {
        for (const QWidget* widget : view.findChildren<QWidget*>()) {
            if (const auto* ring = dynamic_cast<const kit::FocusRing*>(widget)) {
                return ring;
            }
        }
        return nullptr;
    }
    bool says(const QString& words) {
        for (const QLabel* label : view.findChildren<QLabel*>()) {
            if (label->isVisibleTo(&view) && label->text() == words) {
                return true;
            }
        }
        return false;
    }

    int firstCardTop() {
        for (const QWidget* stop : tabStops(view)) {
            if (dynamic_cast<const AgentSummaryCard*>(stop) != nullptr) {
                return stop->mapTo(&view, QPoint(0, 0)).y();
            }
        }
        return 0;
    }

    RecordedActions recorded;
    AgentNavigationState navigation;
    AgentMainWindowView view{{.program = recorded.actions()}, navigation};
};

TEST_F(MainWindow, ListsThePagesAndShowsTheSelectedOne) {
    show(samples::normal());
    ASSERT_EQ(entries().size(), 9U);
    EXPECT_EQ(tabStops(view).front(), entries()[0]);
    EXPECT_TRUE(entries()[0]->isChecked());
    EXPECT_EQ(entries()[2]->accessibleName(), QStringLiteral("Claude, 16% left"));
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

TEST_F(MainWindow, ADisabledAgentHasNeitherEntryNorCard) {
    show(samples::normal());
    show(samples::healthy());
    EXPECT_EQ(entries().size(), 8U);
    EXPECT_FALSE(says(QStringLiteral("Antigravity")));
    EXPECT_TRUE(says(QStringLiteral("Codex")));
}

TEST_F(MainWindow, ShowsTheFocusRingOfEveryControlWhole) {
    show(samples::failed());
    view.activateWindow();
    ASSERT_TRUE(waitUntil([this] { return view.isActiveWindow(); }));
    if (view.focusWidget() != nullptr) {
        view.focusWidget()->clearFocus();
    }
    for (QWidget* stop : tabStops(view)) {
        stop->setFocus(Qt::TabFocusReason);
        const auto* ring = findRing();
        ASSERT_NE(ring, nullptr);
        EXPECT_TRUE(ring->parentWidget()->rect().contains(ring->geometry()))
            << stop->accessibleName().toStdString();
    }
}

TEST_F(MainWindow, TakesTheFocusRingBackFromAnotherWindowUnlessAPressHadRemovedIt) {
    show(samples::normal());
    const std::vector<kit::SidebarEntry*> pages = entries();
    QWidget other;
    other.show();
    const auto leaveAndReturn = [&] {
        other.activateWindow();
        ASSERT_TRUE(waitUntil([&] { return other.isActiveWindow(); }));
        EXPECT_EQ(findRing(), nullptr);
        view.activateWindow();
        ASSERT_TRUE(waitUntil([this] { return view.isActiveWindow(); }));
    };
    view.activateWindow();
    ASSERT_TRUE(waitUntil([this] { return view.isActiveWindow(); }));
    pages[1]->setFocus(Qt::TabFocusReason);
    leaveAndReturn();
    EXPECT_NE(findRing(), nullptr);
    pages[2]->setFocus(Qt::MouseFocusReason);
    leaveAndReturn();
    EXPECT_EQ(findRing(), nullptr);
}

TEST_F(MainWindow, KeepsTheVerdictBesideTheHintAboutTheSetup) {
    const OverviewPageContent asking =
        overviewPageContent(samples::normal(), samples::now(), samples::words("en"), true);
    show(samples::normal(), true);
    EXPECT_TRUE(says(QString::fromStdString(asking.verdict.text)));
    EXPECT_TRUE(says(QString::fromStdString(asking.setupHint)));
    const int withHint = firstCardTop();
    show(samples::normal());
    EXPECT_FALSE(says(QString::fromStdString(asking.setupHint)));
    EXPECT_LT(firstCardTop(), withHint);
}

TEST_F(MainWindow, LeadsToAgentsAndOutOfFailures) {
    show(samples::failed());
    for (QWidget* stop : tabStops(view)) {
        if (dynamic_cast<kit::SidebarEntry*>(stop) == nullptr) {
            stop->setFocus(Qt::TabFocusReason);
            pressKey(view, Qt::Key_Return);
        }
    }
    EXPECT_THAT(recorded.calls,
                ElementsAre("refresh", "openProvider codex", "startSetup", "openProvider claude",
                            "startSetup", "openProvider antigravity"));
}

} // namespace
} // namespace vellmark
