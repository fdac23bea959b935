#include "screenshots/SampleHistory.h"
#include "screenshots/SampleStates.h"
#include "support/Matchers.h"
#include "ui/QtEnvironment.h"
#include "ui/kit/Segments.h"
#include "ui/window/AgentDetailPage.h"
#include "ui/window/AgentWindowCard.h"
#include "ui/window/ReadingCard.h"

#include <QClipboard>
#include <QGuiApplication>

namespace vellmark::tests {
namespace {

class AgentDetail : public ::testing::Test {
protected:
    AgentDetail() {
        actions.refresh = recorded.note("read");
        actions.recheck = recorded.note("recheck");
        actions.switchOff = recorded.note("switchOff");
        actions.setRange = recorded.note("range");
        actions.setOrder = recorded.note("order");
        machine.home = "/home/name";
    }

    void show(const UsageState& state, std::size_t agent, QSize size = {872, 760},
              const std::string& language = "en") {
        const AgentUsageSnapshot& snapshot = state.snapshots.at(agent);
        UsageHistory history;
        samples::addFirstDay(history, state);
        const AgentFacts facts = samples::facts(snapshot.id);
        page.resize(size);
        page.setContent(agentPageContent(
            snapshot, {.state = state, .history = history, .machine = machine, .facts = &facts},
            samples::now(), samples::words(language)));
        page.show();
    }
    template<class Widget>
    std::vector<Widget*> shown() {
        return visibleParts<Widget>(page);
    }
    QAbstractButton* button(const QString& name) { return partNamed(page, name); }
    QRect place(QWidget* widget) { return {widget->mapTo(&page, QPoint(0, 0)), widget->size()}; }

    RecordedActions recorded;
    AgentUIActions program = recorded.actions();
    AgentPageActions actions;
    Machine machine;
    AgentDetailPage page{program, actions, nullptr};
};

TEST_F(AgentDetail, EachControlAsksForWhatItSays) {
    show(samples::stale(), 0);
    button("Refresh")->click();
    button("Read again")->click(); // this agent alone, unlike elsewhere
    button("7 d")->click();
    button("Check Again")->click();
    button("Move back")->click();
    button("Switch off")->click();
    EXPECT_THAT(recorded.calls, ElementsAre("read codex", "read codex", "range 7d", "recheck codex",
                                            "order claude codex", "switchOff codex"));
    EXPECT_FALSE(button("Move forward")->isEnabled());

    button("Copy path")->click();
    EXPECT_EQ(QGuiApplication::clipboard()->text().toStdString(),
              samples::facts(AgentProviderID::codex()).toolPath->string());
    EXPECT_NE(button("Copied"), nullptr);
}

TEST_F(AgentDetail, AMoveToTheEndLeavesTheKeyboardWithTheMoves) {
    show(samples::normal(), 1);
    ASSERT_TRUE(becomesActive(page));
    QAbstractButton* later = button("Move back");
    later->setFocus(Qt::TabFocusReason);
    UsageState moved = samples::normal();
    std::swap(moved.snapshots[1], moved.snapshots[2]);
    std::swap(moved.providerOrder[1], moved.providerOrder[2]);
    show(moved, 2);
    EXPECT_FALSE(later->isEnabled());
    EXPECT_EQ(page.focusWidget(), button("Move forward"))
        << "a key pressed once more must not switch the agent off";
}

TEST_F(AgentDetail, KeepsCardsInPlaceWhileValuesChange) {
    show(samples::normal(), 1);
    const auto before = shown<AgentWindowCard>();
    ASSERT_EQ(before.size(), 3U);
    const QRect place = before[0]->geometry();
    UsageState refreshed = samples::inspected();
    refreshed.snapshots[1].windows[0].usedPercent = 70;
    refreshed.snapshots[1].balances.clear();
    show(refreshed, 1);
    EXPECT_EQ(shown<AgentWindowCard>(), before);
    EXPECT_EQ(before[0]->geometry(), place);

    // Another agent, nothing of the first one is left.
    show(samples::loading(), 0);
    for (const AgentWindowCard* card : shown<AgentWindowCard>()) {
        EXPECT_FALSE(card->hasContent());
        EXPECT_TRUE(card->chart()->isHidden());
    }
    EXPECT_THAT(shown<kit::Segments>(), IsEmpty());
}

TEST_F(AgentDetail, HasTwoColumnsOnlyWhereTwoFit) {
    for (const int width : {500, 662, 792, 872, 2312}) {
        show(samples::inspected(), 1, {width, 700});
        const auto cards = shown<AgentWindowCard>();
        const QRect first = place(cards[0]);
        const QRect second = place(cards[1]);
        const QRect reading = place(shown<ReadingCard>().at(0));
        const bool hasTwo = second.y() == first.y();
        EXPECT_EQ(hasTwo, width >= 728) << width;
        EXPECT_FALSE(first.intersects(second));
        for (const QRect& card : {first, second, reading}) {
            EXPECT_GE(card.left(), 28) << width;
            EXPECT_LE(card.right(), width - 28) << width;
        }
        EXPECT_GE(first.height(), AgentWindowCard::leastHeight);
        if (hasTwo) {
            EXPECT_EQ(reading.top(), place(cards[2]).top());
            EXPECT_EQ(reading.bottom(), place(cards[2]).bottom());
        }
    }
}

TEST_F(AgentDetail, NothingIsShortenedAtTheLeastWidthInAnyLanguage) {
    for (const char* language : {"de", "en", "fr", "it", "es"}) {
        for (const UsageState& state : {samples::readAlone(), samples::usedUp()}) {
            show(state, 1, {662, 512}, language); // of a small screen with type of 150 %
            expectNothingIsCut(page, language);
        }
    }
}

} // namespace
} // namespace vellmark::tests
