#include "screenshots/SampleStates.h"
#include "support/Matchers.h"
#include "ui/QtEnvironment.h"
#include "ui/kit/HealthDot.h"
#include "ui/kit/Label.h"
#include "ui/kit/Motion.h"
#include "ui/popover/AgentBlock.h"
#include "ui/popover/AgentUsagePopoverView.h"
#include "ui/popover/PopoverTabStrip.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QApplication>
#include <QHoverEvent>
#include <QLabel>
#include <QProgressBar>
#include <QScrollArea>
#include <QScrollBar>
#include <QTabBar>

namespace vellmark::tests {
namespace {

PopoverContent content(const UsageState& state, const std::string& tab = "overview",
                       const std::string& language = "en") {
    return popoverContent(state, tab, samples::now(), samples::words(language));
}

/// Everything that a change of values must not move.
std::vector<QRect> places(const QWidget& view) {
    std::vector<QRect> result;
    const auto add = [&](const auto& parts) {
        for (const QWidget* part : parts) {
            result.emplace_back(part->mapTo(&view, QPoint(0, 0)), part->size());
        }
    };
    add(visibleParts<QAbstractButton>(view));
    add(visibleParts<QProgressBar>(view));
    add(visibleParts<QScrollArea>(view));
    return result;
}

class PopoverView : public ::testing::Test {
protected:
    PopoverView() {
        kit::motion::setReduced(true);
        view.onSelectTab = [this](const PopoverTab& tab) { chosen.push_back(tab.storedForm()); };
    }
    void show(PopoverContent shown) {
        view.setContent(std::move(shown));
        view.resize(AgentUsagePopoverView::viewWidth, view.wantedHeight());
        view.show();
        view.setFocus();
    }
    std::vector<AgentBlock*> blocks() { return visibleParts<AgentBlock>(view); }
    QTabBar& tabs() { return *view.findChild<QTabBar*>(); }

    RecordedActions recorded;
    AgentUsagePopoverView view{recorded.actions()};
    std::vector<std::string> chosen;
};

TEST_F(PopoverView, IsAsHighAsItsContentWithinItsLimits) {
    const auto heightOf = [this](PopoverContent shown) {
        show(std::move(shown));
        return view.wantedHeight();
    };
    const int tallest = heightOf(content(samples::manyAgents()));
    EXPECT_EQ(tallest, AgentUsagePopoverView::tallest);
    EXPECT_LT(heightOf(content(samples::healthy())), heightOf(content(samples::normal())));
    PopoverContent single = content(samples::balances());
    single.agents.resize(1);
    single.agents[0].rows.clear();
    single.agents[0].balances.clear();
    EXPECT_EQ(heightOf(single), tallest - AgentUsagePopoverView::mostContentHeight +
                                    AgentUsagePopoverView::leastContentHeight);
}

TEST_F(PopoverView, StandsCloserTogetherRatherThanToScrollForARow) {
    const auto heights = [this](const UsageState& state) {
        show(content(state));
        const QWidget* page = view.findChild<QScrollArea*>("content")->widget();
        return std::pair(page->height(), blocks().front()->height());
    };
    const auto [usual, usualBlock] = heights(samples::normal());
    const auto [credited, creditedBlock] = heights(samples::credited());
    EXPECT_LE(credited, AgentUsagePopoverView::mostContentHeight);
    EXPECT_LT(creditedBlock, usualBlock);
    EXPECT_EQ(heights(samples::normal()).first, usual);
    EXPECT_EQ(heights(samples::manyAgents()).second, usualBlock) << "it scrolls anyway";
}

TEST_F(PopoverView, NeverCutsTheTimeOfTheStatusLine) {
    UsageState state = samples::normal();
    state.snapshots[0].error = UsageProviderError::timeout("Codex");
    const QFont usual = QApplication::font();
    for (const QString& family : {usual.family(), QStringLiteral("DejaVu Sans")}) {
        QFont font = usual;
        font.setFamily(family);
        QApplication::setFont(font);
        for (const std::string_view code : Localization::languages()) {
            const std::string language(code);
            const PopoverContent shown = content(state, "overview", language);
            show(shown);
            const auto* line =
                partNamed<kit::Label>(view, QString::fromStdString(shown.statusLine.text));
            ASSERT_NE(line, nullptr);
            EXPECT_FALSE(line->isShortened()) << line->text().toStdString();
            EXPECT_TRUE(line->text().contains("2:46") || line->text().contains("14:46"));
        }
    }
    QApplication::setFont(usual);
}

TEST_F(PopoverView, HasNoTabsWithoutAgentsAndLeadsToTheSettings) {
    show(content(samples::noAgents()));
    EXPECT_FALSE(tabs().isVisibleTo(&view));
    const std::vector<QWidget*> stops = tabStops(view);
    ASSERT_EQ(stops.size(), 5U);
    qobject_cast<QAbstractButton*>(stops[1])->click();
    EXPECT_THAT(recorded.calls, ElementsAre("openSettings"));
}

TEST_F(PopoverView, ChangesValuesInPlace) {
    show(content(samples::normal()));
    const auto bars = view.findChildren<QProgressBar*>();
    const std::vector<QRect> before = places(view);
    UsageState refreshing = samples::refreshing();
    show(content(refreshing));
    EXPECT_EQ(places(view), before);
    refreshing.snapshots[0].windows[0].usedPercent = 31;
    show(content(refreshing));
    EXPECT_EQ(view.findChildren<QProgressBar*>(), bars);
    EXPECT_EQ(places(view), before);
    EXPECT_EQ(bars.front()->value(), 31);

    UsageState many = samples::manyAgents();
    show(content(many));
    QScrollBar& tabBar = *visibleParts<PopoverTabStrip>(view).at(0)->horizontalScrollBar();
    tabBar.setValue(tabBar.maximum());
    ASSERT_GT(tabBar.value(), 0);
    many.snapshots[0].windows[0].usedPercent = 31;
    show(content(many));
    EXPECT_EQ(tabBar.value(), tabBar.maximum()) << "the tabs stay where they were scrolled to";
}

TEST_F(PopoverView, KeepsBlocksWithTheirAgentsWhenOneGoes) {
    show(content(samples::normal()));
    const std::vector<AgentBlock*> before = blocks();
    UsageState fewer = samples::normal();
    fewer.snapshots.erase(fewer.snapshots.begin());
    fewer.enabledProviderIDs.erase(AgentProviderID::codex());
    show(content(fewer));
    ASSERT_THAT(blocks(), ElementsAre(before[1], before[2]));
    EXPECT_EQ(before[1]->text(), "Claude");
    EXPECT_EQ(before[2]->text(), "Antigravity");
    EXPECT_EQ(tabs().count(), 3);
}

TEST_F(PopoverView, LeadsToAnAgentFromAnywhereOnItsBlock) {
    show(content(samples::normal()));
    const AgentBlock& block = *blocks().front();
    constexpr int step = 10;
    std::size_t clicks = 0;
    for (int top = 0; top < block.height(); top += step) {
        for (int left = 0; left < block.width(); left += step) {
            const QPoint place = block.mapTo(&view, QPoint(left, top));
            QWidget& target = *view.childAt(place);
            sendMouse(target, QEvent::MouseButtonPress, target.mapFrom(&view, place));
            sendMouse(target, QEvent::MouseButtonRelease, target.mapFrom(&view, place));
            ++clicks;
        }
    }
    EXPECT_EQ(recorded.calls, std::vector<std::string>(clicks, "openProvider codex"));
}

TEST_F(PopoverView, IsDrivenByTheKeyboard) {
    show(content(samples::normal()));
    pressKey(view, Qt::Key_3, Qt::ControlModifier);
    pressKey(view, Qt::Key_Right);
    pressKey(view, Qt::Key_Right);
    pressKey(view, Qt::Key_9, Qt::ControlModifier);
    pressKey(view, Qt::Key_Left);
    pressKey(view, Qt::Key_1, Qt::ControlModifier);
    EXPECT_THAT(chosen, ElementsAre("provider:claude", "provider:antigravity", "provider:claude",
                                    "overview"));
    tabs().setFocus(Qt::TabFocusReason);
    pressKey(view, Qt::Key_Right);
    EXPECT_EQ(chosen.back(), "provider:codex");
    pressKey(view, Qt::Key_R, Qt::ControlModifier);
    EXPECT_THAT(recorded.calls, ElementsAre("refresh"));
}

TEST_F(PopoverView, ReachesEveryControlByTabAndPressesItByReturn) {
    show(content(samples::failed()));
    for (QWidget* stop : tabStops(view)) {
        stop->setFocus(Qt::TabFocusReason);
        pressKey(view, Qt::Key_Return);
    }
    EXPECT_THAT(recorded.calls,
                ElementsAre("refresh", "openProvider codex", "setUpAgent codex",
                            "openProvider claude", "setUpAgent claude", "openProvider antigravity",
                            "openWindow", "showAbout", "quit"));
}

TEST_F(PopoverView, KeepsTheKeyboardNearWhenItsControlGoesOutOfSight) {
    show(content(samples::normal()));
    blocks().back()->setFocus(Qt::TabFocusReason);
    ASSERT_EQ(view.window()->focusWidget(), blocks().back());
    pressKey(view, Qt::Key_2, Qt::ControlModifier);
    EXPECT_EQ(view.window()->focusWidget(), &tabs());
}

TEST_F(PopoverView, TellsAssistiveSoftwareWhatEveryControlIs) {
    // That each control has a name and a role is tested in the running application.
    show(content(samples::stale()));
    QAccessibleInterface* tab = QAccessible::queryAccessibleInterface(&tabs())->child(1);
    EXPECT_EQ(tab->role(), QAccessible::PageTab);
    EXPECT_EQ(tab->text(QAccessible::Name), "Codex: 34 min old. Codex did not answer in time.");
    const QAccessibleInterface* block = QAccessible::queryAccessibleInterface(blocks().front());
    EXPECT_EQ(block->role(), QAccessible::Button);
    EXPECT_TRUE(block->text(QAccessible::Description).contains("% left. Reset"));
    for (const char* shown : {"overview", "provider:codex"}) {
        show(content(samples::stale(), shown));
        QAccessibleInterface* bar =
            QAccessible::queryAccessibleInterface(visibleParts<QProgressBar>(view).front());
        EXPECT_EQ(bar->role(), QAccessible::ProgressBar);
        EXPECT_EQ(bar->text(QAccessible::Name), "Session: 22% used");
        EXPECT_EQ(bar->valueInterface()->currentValue().toInt(), 22);
    }
}

TEST_F(PopoverView, TracksCanBeToldFromABlockThatIsPointedAtOrPressed) {
    show(content(samples::normal()));
    AgentBlock& block = *blocks().front();
    const auto* bar = block.findChild<QProgressBar*>();
    const QPoint track = bar->mapTo(&block, QPoint(bar->width() - 10, bar->height() / 2));
    const auto isTold = [&] {
        const QImage drawn = block.grab().toImage();
        const QPoint ground(track.x(), 4);
        return kit::contrastRatio(drawn.pixelColor(track), drawn.pixelColor(ground)) > 1.1;
    };
    QHoverEvent enter(QEvent::HoverEnter, QPointF(5, 5), QPointF(5, 5), QPointF(-1, -1));
    QCoreApplication::sendEvent(&block, &enter);
    EXPECT_TRUE(isTold());
    block.setDown(true);
    EXPECT_TRUE(isTold());
}

TEST_F(PopoverView, ShortensWordsButNeverNumbers) {
    show(content(samples::longTexts(), "overview", "de"));
    bool isValueWhole = false;
    for (const QLabel* label : visibleParts<QLabel>(view)) {
        if (label->text().endsWith("übrig")) {
            isValueWhole = true;
            EXPECT_GE(label->width(), label->sizeHint().width()) << label->text().toStdString();
        }
    }
    EXPECT_TRUE(isValueWhole);
}

TEST_F(PopoverView, ScrollsWhatDoesNotFitAndStartsAtTheTopOfATab) {
    show(content(samples::manyAgents()));
    auto* scroller = view.findChild<QScrollArea*>("content");
    ASSERT_NE(scroller, nullptr);
    pressKey(view, Qt::Key_PageDown);
    EXPECT_GT(scroller->verticalScrollBar()->value(), 0);
    pressKey(view, Qt::Key_2, Qt::ControlModifier);
    EXPECT_EQ(scroller->verticalScrollBar()->value(), 0);
}

} // namespace
} // namespace vellmark::tests
