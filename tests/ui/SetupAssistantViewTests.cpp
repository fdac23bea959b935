#include "screenshots/SampleSetup.h"
#include "screenshots/SampleStates.h"
#include "support/Matchers.h"
#include "ui/QtEnvironment.h"
#include "ui/kit/Button.h"
#include "ui/kit/Question.h"
#include "ui/setup/SetupAssistantView.h"

#include <QAbstractButton>
#include <QScrollArea>

namespace vellmark::tests {
namespace {

const auto claude = AgentProviderID::claude();
const auto antigravity = AgentProviderID::antigravity();

class SetupAssistantViewTest : public ::testing::Test {
protected:
    void show(const SetupAssistantState& state) {
        view.setContent(setupAssistantContent(state, samples::now(), words));
        view.show();
        view.activateWindow();
        settle();
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
    RecordedActions recorded;
    std::vector<std::string>& calls = recorded.calls;
    int looks = 0;
    SetupAssistantView view{{.next = recorded.note("next"),
                             .back = recorded.note("back"),
                             .later = recorded.note("later"),
                             .check = recorded.note("check"),
                             .enableAgent = recorded.note("enable"),
                             .run = recorded.note("run"),
                             .takeOtherCommand = recorded.note("other command"),
                             .openGuide = recorded.note("guide"),
                             .copy = recorded.note("copy"),
                             .change = recorded.note("change"),
                             .press = recorded.note("press"),
                             .lookAgain = [this] { ++looks; }}};
};

TEST_F(SetupAssistantViewTest, TheKeyboardComesToEverythingInTheOrderOfReading) {
    show(samples::setup(SetupStep::agents, words));
    EXPECT_GT(looks, 0) << "with the keyboard comes another look";
    pressEverything();
    EXPECT_THAT(calls, ElementsAre("enable codex off", "enable claude off",
                                   "enable antigravity off", "later", "back", "next"));
    calls.clear();
    show(samples::failedSetup(words));
    pressEverything();
    EXPECT_THAT(
        calls,
        ElementsAre("copy claude auth login", "run claude", "enable claude off", "guide claude",
                    "copy curl -fsSL https://antigravity.google/cli/install.sh | bash",
                    "run antigravity", "other command antigravity", "enable antigravity off",
                    "guide antigravity", "check", "later", "back", "next"));
    calls.clear();
    show(samples::setup(SetupStep::finish, words));
    pressEverything();
    EXPECT_THAT(calls,
                ElementsAre("change notices off", "change launch-at-login off", "back", "next"));
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

} // namespace
} // namespace vellmark::tests
