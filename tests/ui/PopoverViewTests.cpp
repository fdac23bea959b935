#include "screenshots/SampleStates.h"
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
#include <QLabel>
#include <QMouseEvent>
#include <QProgressBar>
#include <QScrollArea>
#include <QScrollBar>
#include <QTabBar>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace vellmark {
namespace {

using ::testing::ElementsAre;
using testing::pressKey;
using testing::RecordedActions;
using testing::tabStops;

PopoverContent content(const UsageState& state, const std::string& tab = "overview",
                       const std::string& language = "en") {
    return popoverContent(state, tab, samples::now(), samples::words(language));
}

/// Presses and releases the left button at a place of the view.
void click(QWidget& view, QPoint place) {
    QWidget* target = view.childAt(place);
    for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        const Qt::MouseButtons held =
            type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton;
        QMouseEvent event(type, target->mapFrom(&view, place), view.mapToGlobal(place),
                          Qt::LeftButton, held, Qt::NoModifier);
        QCoreApplication::sendEvent(target, &event);
    }
}

/// Everything that a change of values must not move.
std::vector<QRect> places(const QWidget& view) {
    std::vector<QRect> result;
    for (const auto* kind : {"QAbstractButton", "QProgressBar", "QScrollArea"}) {
        for (const QWidget* widget : view.findChildren<QWidget*>()) {
            if (widget->inherits(kind) && widget->isVisibleTo(&view)) {
                result.emplace_back(widget->mapTo(&view, QPoint(0, 0)), widget->size());
            }
        }
    }
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
    std::vector<AgentBlock*> blocks() {
        std::vector<AgentBlock*> result;
        for (QWidget* stop : tabStops(view)) {
            if (auto* block = dynamic_cast<AgentBlock*>(stop)) {
                result.push_back(block);
            }
        }
        return result;
    }
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
        const QWidget* page = view.findChild<QScrollArea*>(QStringLiteral("content"))->widget();
        const auto parts = page->findChildren<QWidget*>();
        const auto block = std::ranges::find_if(
            parts, [](QWidget* part) { return dynamic_cast<AgentBlock*>(part) != nullptr; });
        return std::pair(page->height(), (*block)->height());
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
            const kit::Label* line = nullptr;
            for (const QLabel* label : view.findChildren<QLabel*>()) {
                if (label->accessibleName().toStdString() == shown.statusLine.text) {
                    line = dynamic_cast<const kit::Label*>(label);
                }
            }
            ASSERT_NE(line, nullptr);
            EXPECT_FALSE(line->isShortened()) << line->text().toStdString();
            EXPECT_TRUE(line->text().contains(QStringLiteral("2:46")) ||
                        line->text().contains(QStringLiteral("14:46")));
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
}

TEST_F(PopoverView, NewValuesLeaveTheTabsWhereTheyWereScrolledTo) {
    UsageState state = samples::manyAgents();
    show(content(state));
    const auto* strip = dynamic_cast<PopoverTabStrip*>(view.findChild<QScrollArea*>());
    ASSERT_NE(strip, nullptr);
    QScrollBar& bar = *strip->horizontalScrollBar();
    bar.setValue(bar.maximum());
    ASSERT_GT(bar.value(), 0);
    state.snapshots[0].windows[0].usedPercent = 31;
    show(content(state));
    EXPECT_EQ(bar.value(), bar.maximum());
}

TEST_F(PopoverView, KeepsBlocksWithTheirAgentsWhenOneGoes) {
    show(content(samples::normal()));
    const std::vector<AgentBlock*> before = blocks();
    UsageState fewer = samples::normal();
    fewer.snapshots.erase(fewer.snapshots.begin());
    fewer.enabledProviderIDs.erase(AgentProviderID::codex());
    show(content(fewer));
    ASSERT_THAT(blocks(), ElementsAre(before[1], before[2]));
    EXPECT_EQ(before[1]->text(), QStringLiteral("Claude"));
    EXPECT_EQ(before[2]->text(), QStringLiteral("Antigravity"));
    EXPECT_EQ(tabs().count(), 3);
}

TEST_F(PopoverView, LeadsToAnAgentFromAnywhereOnItsBlock) {
    show(content(samples::normal()));
    const AgentBlock& block = *blocks().front();
    constexpr int step = 10;
    std::size_t clicks = 0;
    for (int top = 0; top < block.height(); top += step) {
        for (int left = 0; left < block.width(); left += step) {
            click(view, block.mapTo(&view, QPoint(left, top)));
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
    for (const char* tab : {"overview", "provider:codex"}) {
        show(content(samples::stale(), tab));
        for (QWidget* stop : tabStops(view)) {
            QAccessibleInterface* told = QAccessible::queryAccessibleInterface(stop);
            ASSERT_NE(told, nullptr);
            if (told->role() == QAccessible::PageTabList) {
                EXPECT_EQ(told->child(1)->text(QAccessible::Name),
                          QStringLiteral("Codex: 34 min old. "
                                         "Codex did not answer in time."));
                EXPECT_TRUE(told->child(1)->role() == QAccessible::PageTab);
            } else {
                EXPECT_FALSE(told->text(QAccessible::Name).isEmpty());
                EXPECT_EQ(told->role(), QAccessible::Button);
            }
            if (dynamic_cast<const AgentBlock*>(stop) != nullptr) {
                EXPECT_THAT(told->text(QAccessible::Description).toStdString(),
                            ::testing::HasSubstr("% left. Reset"));
            }
        }
        const auto* bar = view.findChild<QProgressBar*>();
        QAccessibleInterface* told =
            QAccessible::queryAccessibleInterface(const_cast<QProgressBar*>(bar));
        EXPECT_EQ(told->role(), QAccessible::ProgressBar);
        EXPECT_EQ(told->text(QAccessible::Name), QStringLiteral("Session: 22% used"));
        EXPECT_EQ(told->valueInterface()->currentValue().toInt(), 22);
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
    for (const QLabel* label : view.findChildren<QLabel*>()) {
        if (label->text().endsWith(QStringLiteral("übrig")) && label->isVisibleTo(&view)) {
            isValueWhole = true;
            EXPECT_GE(label->width(), label->sizeHint().width()) << label->text().toStdString();
        }
    }
    EXPECT_TRUE(isValueWhole);
}

TEST_F(PopoverView, ScrollsWhatDoesNotFitAndStartsAtTheTopOfATab) {
    show(content(samples::manyAgents()));
    auto* scroller = view.findChild<QScrollArea*>(QStringLiteral("content"));
    ASSERT_NE(scroller, nullptr);
    pressKey(view, Qt::Key_PageDown);
    EXPECT_GT(scroller->verticalScrollBar()->value(), 0);
    pressKey(view, Qt::Key_2, Qt::ControlModifier);
    EXPECT_EQ(scroller->verticalScrollBar()->value(), 0);
}

} // namespace
} // namespace vellmark
