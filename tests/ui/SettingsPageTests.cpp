#include "screenshots/SampleSettings.h"
#include "screenshots/SampleStates.h"
#include "support/Matchers.h"
#include "ui/QtEnvironment.h"
#include "ui/kit/Button.h"
#include "ui/kit/Choice.h"
#include "ui/kit/Field.h"
#include "ui/kit/Form.h"
#include "ui/kit/Label.h"
#include "ui/kit/Question.h"
#include "ui/window/SettingsPage.h"

#include <QWheelEvent>

namespace vellmark::tests {
namespace {

/// The page with what it asks for written down.
class SettingsPageTest : public ::testing::Test {
protected:
    void show(const SettingsPageState& state, const std::string& language = "en") {
        page.setContent(settingsPageContent(state, samples::machine(), samples::words(language)));
        page.show();
        const std::vector<QWidget*> controls = page.controls();
        for (std::size_t index = 1; index < controls.size(); ++index) {
            QWidget::setTabOrder(controls[index - 1], controls[index]);
        }
        EXPECT_TRUE(becomesActive(page));
    }
    template<typename Widget>
    Widget* named(const QString& name) {
        return partNamed<Widget>(page, name);
    }
    kit::Button* button(const QString& words) { return named<kit::Button>(words); }
    void press(QWidget* control, int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        ASSERT_NE(control, nullptr);
        control->setFocus(Qt::TabFocusReason);
        pressKey(page, key, modifiers);
    }
    static void drag(QWidget* handle, int distance) {
        sendMouse(*handle, QEvent::MouseButtonPress, {10, 10});
        sendMouse(*handle, QEvent::MouseMove, {10, 10.0 + distance / 2});
        sendMouse(*handle, QEvent::MouseMove, {10, 10.0 + distance});
        sendMouse(*handle, QEvent::MouseButtonRelease, {10, 10.0 + distance});
    }

    RecordedActions recorded;
    const std::vector<std::string>& calls = recorded.calls;
    SettingsPageActions actions{.appear = recorded.note("appear"),
                                .enableAgent = recorded.note("enable"),
                                .orderAgents = recorded.note("order"),
                                .checkAgents = recorded.note("check"),
                                .chooseProgram = recorded.note("path of"),
                                .change = recorded.note("change"),
                                .press = recorded.note("press")};
    AgentUIActions program = recorded.actions();
    SettingsPage page{actions, program, nullptr};
};

TEST_F(SettingsPageTest, EveryControlDoesWhatItSaysByKeyboardAlone) {
    page.resize(900, 700);
    show(samples::unreadySettings());
    press(button("Open setup …"), Qt::Key_Space);
    press(button("Check Again"), Qt::Key_Space);
    press(named<QAbstractButton>("Move Codex"), Qt::Key_Up); // the first, and the last
    press(named<QAbstractButton>("Move Antigravity"), Qt::Key_Down);
    press(named<QAbstractButton>("Move Codex"), Qt::Key_Down);
    press(named<QAbstractButton>("Show Claude"), Qt::Key_Up, Qt::AltModifier);
    press(named<QAbstractButton>("Show Codex"), Qt::Key_Space);
    press(button("Log in …"), Qt::Key_Space);
    press(button("Approve …"), Qt::Key_Space);
    press(named<QAbstractButton>("Start at login"), Qt::Key_Space);
    press(named<kit::Choice>("Language"), Qt::Key_Down);
    press(button("Show in folder"), Qt::Key_Space);
    EXPECT_THAT(calls, ElementsAre("startSetup", "check", "order claude codex antigravity",
                                   "order claude codex antigravity", "enable codex on",
                                   "setUpAgent claude", "press launch-at-login",
                                   "change launch-at-login off", "change language de",
                                   "press data-folder"));
}

TEST_F(SettingsPageTest, ArrowsChooseAmongSegments) {
    show(samples::settings());
    auto parts = visibleParts<QAbstractButton>(page);
    std::erase_if(parts, [](const QAbstractButton* part) {
        return !part->autoExclusive() || !part->isChecked();
    });
    for (QWidget* part : parts) {
        press(part, Qt::Key_Right);
    }
    EXPECT_THAT(calls, ElementsAre("change appearance light", "change first-figure used",
                                   "change interval 10", "change last-window quit",
                                   "change status-ink light"));
}

TEST_F(SettingsPageTest, DraggingAHandleMovesItsRow) {
    page.resize(900, 700);
    show(samples::settings());
    drag(named<QAbstractButton>("Move Codex"), 20);
    EXPECT_THAT(calls, IsEmpty()) << "not past the middle of the next row";
    drag(named<QAbstractButton>("Move Codex"), 70);
    drag(named<QAbstractButton>("Move Antigravity"), -400);
    EXPECT_THAT(calls,
                ElementsAre("order claude codex antigravity", "order antigravity codex claude"));
}

TEST_F(SettingsPageTest, RowsKeepTheKeyboardWhileTheyChangePlaces) {
    SettingsPageState state = samples::settings();
    show(state);
    auto* handle = named<QAbstractButton>("Move Codex");
    handle->setFocus(Qt::TabFocusReason);
    const int before = handle->mapTo(&page, QPoint()).y();
    std::swap(state.order[0], state.order[1]);
    show(state);
    EXPECT_EQ(page.focusWidget(), handle);
    EXPECT_GT(handle->mapTo(&page, QPoint()).y(), before);
    EXPECT_TRUE(handle->accessibleDescription().startsWith("Place 2 of 3"));
}

TEST_F(SettingsPageTest, PathsAreTypedChosenAndTakenAway) {
    show(samples::unreadySettings());
    auto* field = named<kit::Field>("Codex CLI");
    ASSERT_NE(field, nullptr);
    field->setFocus(Qt::TabFocusReason);
    field->insert("/opt/x");
    // A refresh in between sweeps nothing away; Escape does.
    show(samples::unreadySettings());
    EXPECT_EQ(field->text(), "/opt/x");
    pressKey(page, Qt::Key_Escape);
    EXPECT_EQ(field->text(), "");
    field->insert("/opt/codex");
    pressKey(page, Qt::Key_Return);
    press(named<QAbstractButton>("Claude Code CLI: Look for it again"), Qt::Key_Space);
    QString asked;
    page.setBrowse([&](QWidget*, const QString&, const QString& current,
                       const std::function<void(const QString&)>& chosen) {
        asked = current;
        chosen("/usr/local/bin/claude");
    });
    press(named<QAbstractButton>("Claude Code CLI: Choose …"), Qt::Key_Space);
    EXPECT_EQ(asked, "~/tools/claude-code/bin/claude");
    EXPECT_THAT(calls, ElementsAre("path of codex /opt/codex", "path of claude ",
                                   "path of claude /usr/local/bin/claude"));
}

TEST_F(SettingsPageTest, NothingIsDeletedUnlessTheQuestionIsAnsweredWithTheDeed) {
    show(samples::settings());
    press(button("Delete …"), Qt::Key_Space);
    ASSERT_NE(page.question(), nullptr);
    EXPECT_EQ(page.question()->focusWidget(), page.question()->cancelButton());
    pressKey(*page.question(), Qt::Key_Return);
    ASSERT_TRUE(waitUntil([this] { return page.question() == nullptr; }));
    press(button("Delete …"), Qt::Key_Space);
    pressKey(*page.question(), Qt::Key_Escape);
    ASSERT_TRUE(waitUntil([this] { return page.question() == nullptr; }));
    EXPECT_THAT(calls, IsEmpty());

    press(button("Delete …"), Qt::Key_Space);
    page.question()->deedButton()->setFocus(Qt::TabFocusReason);
    pressKey(*page.question(), Qt::Key_Return);
    ASSERT_TRUE(waitUntil([this] { return page.question() == nullptr; }));
    press(button("Reset …"), Qt::Key_Space);
    page.question()->deedButton()->click();
    EXPECT_THAT(calls, ElementsAre("press history", "press reset"));
}

TEST_F(SettingsPageTest, TheWheelScrollsThePageAndChangesNothing) {
    show(samples::settings());
    auto* language = named<kit::Choice>("Language");
    QWheelEvent turn(QPointF(5, 5), QPointF(5, 5), QPoint(), QPoint(0, -120), Qt::NoButton,
                     Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(language, &turn);
    EXPECT_EQ(language->currentIndex(), 0);
    EXPECT_FALSE(turn.isAccepted());
}

TEST_F(SettingsPageTest, TheKeyboardComesToEveryControlAndItsRingIsSeenWhole) {
    page.resize(792, 680);
    show(samples::unreadySettings());
    EXPECT_GT(tabStops(page).size(), 25U);
    expectFocusRingsAreWhole(page);
}

TEST_F(SettingsPageTest, NothingIsCutOffOrOverlapsInAnyLanguage) {
    for (const int width : {470, 792}) {
        page.resize(width, 700);
        for (const char* language : {"de", "en", "fr", "it", "es"}) {
            show(samples::unreadySettings(), language);
            expectNothingIsCut(page, std::string(language) + ", " + std::to_string(width));
        }
    }
}

} // namespace
} // namespace vellmark::tests
