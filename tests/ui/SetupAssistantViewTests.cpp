#include "screenshots/SampleSetup.h"
#include "screenshots/SampleStates.h"
#include "ui/QtEnvironment.h"
#include "ui/kit/Button.h"
#include "ui/kit/Question.h"
#include "ui/setup/SetupAssistantView.h"
#include "ui/setup/SetupToolCard.h"

#include <QAbstractButton>
#include <QCoreApplication>
#include <QScrollArea>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vellmark {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::pressKey;

const auto codex = AgentProviderID::codex();
const auto claude = AgentProviderID::claude();
const auto antigravity = AgentProviderID::antigravity();

class SetupAssistantViewTest : public ::testing::Test {
protected:
    SetupAssistantActions recording() {
        const auto note = [this](const char* call) {
            return [this, call] { calls.push_back(call); };
        };
        const auto noteAgent = [this](const char* call) {
            return [this, call](const AgentProviderID& id) {
                calls.push_back(call + (" " + id.rawValue));
            };
        };
        return {
            .next = note("next"),
            .back = note("back"),
            .later = note("later"),
            .check = note("check"),
            .enableAgent =
                [this](const AgentProviderID& id, bool isEnabled) {
                    calls.push_back(id.rawValue + (isEnabled ? " on" : " off"));
                },
            .run = noteAgent("run"),
            .takeOtherCommand = noteAgent("other command"),
            .openGuide = noteAgent("guide"),
            .copy = [this](const std::string& text) { calls.push_back("copy " + text); },
            .change = [this](const std::string& name,
                             const std::string& value) { calls.push_back(name + " = " + value); },
            .press = [this](const std::string& name) { calls.push_back("press " + name); },
            .lookAgain = [this] { ++looks; }};
    }
    void show(const SetupAssistantState& state) {
        view.setContent(setupAssistantContent(state, samples::now(), words));
        view.show();
        view.activateWindow();
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
    }
    void pressEverything() {
        view.controls().back()->setFocus(Qt::TabFocusReason); // from here Tab begins anew
        do {
            pressKey(view, Qt::Key_Tab);
            pressKey(view, Qt::Key_Space);
            EXPECT_FALSE(view.focusWidget()->visibleRegion().isEmpty());
        } while (view.focusWidget() != view.controls().back());
    }
    /// The words of the button that has the keyboard, and whose it is.
    std::string focused() {
        const auto* button = qobject_cast<QAbstractButton*>(view.focusWidget());
        return button == nullptr
                   ? std::string()
                   : (button->text().isEmpty() ? button->accessibleName() : button->text())
                             .toStdString() +
                         ", " + button->accessibleDescription().toStdString();
    }

    Localization words = samples::words("en");
    std::vector<std::string> calls;
    int looks = 0;
    SetupAssistantView view{recording()};
};

TEST_F(SetupAssistantViewTest, TheKeyboardComesToEverythingInTheOrderOfReading) {
    show(samples::setup(SetupStep::agents, words));
    EXPECT_GT(looks, 0) << "with the keyboard comes another look";
    pressEverything();
    EXPECT_THAT(calls,
                ElementsAre("codex off", "claude off", "antigravity off", "later", "back", "next"));
    calls.clear();
    show(samples::failedSetup(words));
    pressEverything();
    EXPECT_THAT(calls,
                ElementsAre("copy claude auth login", "run claude", "claude off", "guide claude",
                            "copy curl -fsSL https://antigravity.google/cli/install.sh | bash",
                            "run antigravity", "other command antigravity", "antigravity off",
                            "guide antigravity", "check", "later", "back", "next"));
    calls.clear();
    show(samples::setup(SetupStep::finish, words));
    pressEverything();
    EXPECT_THAT(calls, ElementsAre("notices = off", "launch-at-login = off", "back", "next"));
    ASSERT_NE(view.question(), nullptr) << "another program's file is changed after a yes only";
    calls.clear();
    view.question()->deedButton()->click();
    EXPECT_THAT(calls, ElementsAre("press status-line"));
}

TEST_F(SetupAssistantViewTest, ReturnGoesOnAndEscapeCloses) {
    show(samples::setup(SetupStep::welcome, words));
    pressKey(view, Qt::Key_Return);
    EXPECT_THAT(calls, ElementsAre("next"));
    pressKey(view, Qt::Key_Escape);
    EXPECT_FALSE(view.isVisible());
}

TEST_F(SetupAssistantViewTest, ComesToTheAgentThatSomebodyCameFor) {
    view.resize(SetupAssistantView::leastSize);
    SetupAssistantState state = samples::failedSetup(words);
    state.focus = antigravity;
    show(state);
    EXPECT_EQ(focused(), "Install in Terminal, Antigravity");
    const auto* scroller = view.findChild<QScrollArea*>();
    const QWidget* button = view.focusWidget();
    EXPECT_TRUE(scroller->viewport()->rect().contains(
        button->mapTo(scroller->viewport(), QPoint(0, button->height()))));
}

// What a button led to takes it away; the user goes on where he was.
TEST_F(SetupAssistantViewTest, TheKeyboardStaysWithTheAgentAndGoesOnToTheNext) {
    SetupAssistantState state = samples::failedSetup(words);
    state.focus = claude;
    show(state);
    ASSERT_EQ(focused(), "Log in in Terminal, Claude");
    state.agents[1].run = SetupRun::Stage::running;
    show(state);
    EXPECT_EQ(focused(), "Copy command, claude auth login");
    state.agents[1].run.reset();
    state.agents[1].status = AgentSetupStatus::ready;
    show(state);
    EXPECT_EQ(focused(), "Install in Terminal, Antigravity");
    state.agents[2].status = AgentSetupStatus::ready;
    state.step = SetupStep::finish;
    show(state);
    EXPECT_EQ(focused(), "Done, ");
}

TEST_F(SetupAssistantViewTest, TheFootHasRoomInEveryLanguageAndNothingLiesOverAnother) {
    for (const std::string_view language : Localization::languages()) {
        words = samples::words(std::string(language));
        for (const QSize size : {SetupAssistantView::firstSize, SetupAssistantView::leastSize}) {
            view.resize(size);
            show(samples::closedSetup(words));
            std::vector<QRect> places;
            for (const auto* button : view.findChildren<QAbstractButton*>()) {
                if (!button->isVisible()) {
                    continue;
                }
                EXPECT_GE(button->width(), button->minimumSizeHint().width());
                const QRect place(button->mapTo(&view, QPoint(0, 0)), button->size());
                EXPECT_LE(place.right(), view.width()) << button->text().toStdString();
                if (button->parentWidget() == &view) {
                    for (const QRect& other : places) {
                        EXPECT_FALSE(place.intersects(other)) << button->text().toStdString();
                    }
                    places.push_back(place);
                }
            }
            EXPECT_EQ(places.size(), 4U);
        }
    }
}

} // namespace
} // namespace vellmark
