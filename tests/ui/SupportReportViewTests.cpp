#include "screenshots/SampleReport.h"
#include "screenshots/SampleStates.h"
#include "support/Matchers.h"
#include "ui/QtEnvironment.h"
#include "ui/report/ReportTextView.h"
#include "ui/report/SupportReportView.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QScrollBar>

#include <algorithm>

namespace vellmark::tests {
namespace {

using samples::ReportMoment;

class SupportReportViewTest : public ::testing::Test {
protected:
    SupportReportViewTest() {
        view_.show();
        EXPECT_TRUE(becomesActive(view_));
    }
    void show(ReportMoment moment, const std::string& language = "en") {
        const Localization words = samples::words(language);
        state_ = samples::report(moment, words);
        view_.setContent(supportReportContent(state_, words));
        settle();
    }
    /// Shows a text of the test's own.
    void showText(const std::string& text) {
        state_ = samples::report(ReportMoment::clean, samples::words("en"));
        state_.text = std::make_shared<const RedactedText>(RedactedText{text, {}});
        view_.setContent(supportReportContent(state_, samples::words("en")));
        settle();
    }
    QAbstractButton* button(const QString& title) { return partNamed(view_, title); }
    ReportTextView& text() { return *view_.text(); }
    QScrollBar& bar() { return *text().verticalScrollBar(); }
    void mouse(QEvent::Type type, QPointF at) { sendMouse(*text().viewport(), type, at); }
    QPointF middleOf(std::size_t place) { return text().rectOf(place).topLeft() + QPointF(1, 9); }
    std::size_t placeOf(const std::string& words) { return state_.text->text.find(words); }

    SupportReportState state_;
    RecordedActions recorded_;
    SupportReportView view_{{.type = recorded_.note("type"),
                             .setIncludeEmails = recorded_.note("include"),
                             .lookFor = recorded_.note("look for"),
                             .goToMatch = recorded_.note("go"),
                             .copy = recorded_.note("copy"),
                             .save = recorded_.note("save"),
                             .mail = recorded_.note("mail"),
                             .showFile = recorded_.note("show")}};
};

TEST_F(SupportReportViewTest, AsksForWhatIsPressedAndOffersOnlyWhatThereIs) {
    show(ReportMoment::building);
    EXPECT_FALSE(button("Send by E-Mail …")->isEnabled());
    EXPECT_FALSE(text().isVisible());
    show(ReportMoment::saved);
    EXPECT_TRUE(text().isVisible());
    recorded_.calls.clear();
    for (const char* title : {"Copy", "Save …", "Send by E-Mail …", "Show in folder",
                              "Leave e-mail addresses in the report"}) {
        button(title)->click();
    }
    view_.findChild<QPlainTextEdit*>()->setPlainText("It hung.");
    QLineEdit* search = view_.findChild<QLineEdit*>();
    search->setFocus();
    search->setText("x");
    pressKey(view_, Qt::Key_Return);
    pressKey(view_, Qt::Key_Return, Qt::ShiftModifier);
    pressKey(view_, Qt::Key_Escape);
    EXPECT_THAT(recorded_.calls,
                ElementsAre("copy", "save", "mail", "show", "include on", "type It hung.",
                            "look for x", "go 1", "go -1", "look for "));
    EXPECT_TRUE(view_.isVisible()) << "the first Escape empties the field";
    pressKey(view_, Qt::Key_Escape);
    EXPECT_FALSE(view_.isVisible());
}

TEST_F(SupportReportViewTest, NothingIsCutInAnyLanguage) {
    for (const QSize size : {SupportReportView::firstSize, SupportReportView::leastSize}) {
        view_.resize(size);
        for (const std::string_view language : Localization::languages()) {
            for (int moment = 0; moment <= static_cast<int>(ReportMoment::failed); ++moment) {
                show(static_cast<ReportMoment>(moment), std::string(language));
                expectNothingIsCut(view_, std::string(language));
            }
        }
    }
}

TEST_F(SupportReportViewTest, KeysReachEverythingFromTopToBottom) {
    show(ReportMoment::found);
    std::vector<QString> names;
    for (QWidget* stop : tabStops(view_)) {
        names.push_back(QAccessible::queryAccessibleInterface(stop)->text(QAccessible::Name));
    }
    EXPECT_THAT(names, ElementsAre("What happened?", "Leave e-mail addresses in the report",
                                   "Search the report", "Previous match", "Next match",
                                   "Text of the report", "7 paths", "4 addresses", "2 keys", "Copy",
                                   "Save …", "Send by E-Mail …"));
}

TEST_F(SupportReportViewTest, PointingMarksAllOfAKindAndAPressLeadsThroughThem) {
    show(ReportMoment::ready);
    const auto& places = state_.text->places;
    const auto address = std::ranges::find(places, RemovedKind::address, &RemovedPlace::kind);
    button("4 addresses")->click();
    EXPECT_EQ(text().selection(), (TextRange{address->begin, address->end}));
    EXPECT_GT(bar().value(), 0) << "it was out of sight";
    for (int press = 0; press < 4; ++press) {
        button("4 addresses")->click();
    }
    EXPECT_EQ(text().selection().begin, address->begin) << "behind the last comes the first";

    const QImage plain = text().grab().toImage();
    mouse(QEvent::MouseMove, middleOf(address->begin));
    EXPECT_TRUE(button("4 addresses")->isDown());
    EXPECT_NE(text().grab().toImage(), plain);
    mouse(QEvent::MouseMove, middleOf(address->begin - 2));
    EXPECT_FALSE(button("4 addresses")->isDown());
    EXPECT_EQ(text().grab().toImage(), plain);
    button("7 paths")->setFocus(Qt::TabFocusReason);
    EXPECT_NE(text().grab().toImage(), plain) << "and the keyboard does the same";
}

TEST_F(SupportReportViewTest, SelectsByPointerAndByKeys) {
    show(ReportMoment::ready);
    const std::size_t word = placeOf("Logged");
    mouse(QEvent::MouseButtonDblClick, middleOf(word + 2));
    EXPECT_EQ(text().selectedText(), "Logged");
    mouse(QEvent::MouseButtonPress, middleOf(word));
    mouse(QEvent::MouseMove, middleOf(word + 9));
    mouse(QEvent::MouseButtonRelease, middleOf(word + 9));
    EXPECT_EQ(text().selectedText(), "Logged in");

    text().setFocus();
    pressKey(view_, Qt::Key_Home, Qt::ControlModifier);
    EXPECT_EQ(bar().value(), 0);
    pressKey(view_, Qt::Key_Down, Qt::ShiftModifier);
    pressKey(view_, Qt::Key_Right, Qt::ShiftModifier);
    pressKey(view_, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), "Vellmark support report\nC");
    pressKey(view_, Qt::Key_A, Qt::ControlModifier);
    pressKey(view_, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text().toStdString(), state_.text->text);
    pressKey(view_, Qt::Key_End, Qt::ControlModifier);
    EXPECT_EQ(bar().value(), bar().maximum());
    EXPECT_EQ(text().caret(), state_.text->text.size());
    // Up and back, whatever the lengths of the rows between.
    text().select(placeOf("claude: ~") + 60, placeOf("claude: ~") + 60);
    const std::size_t caret = text().caret();
    for (const int key :
         {Qt::Key_Up, Qt::Key_Up, Qt::Key_Up, Qt::Key_Down, Qt::Key_Down, Qt::Key_Down}) {
        pressKey(view_, key);
    }
    EXPECT_EQ(text().caret(), caret);
}

TEST_F(SupportReportViewTest, KeepsThePlaceThatIsReadWhenItsWidthChanges) {
    show(ReportMoment::ready);
    bar().setValue(bar().maximum() / 2);
    const std::size_t place = text().placeAt({0, 12});
    view_.resize(SupportReportView::leastSize);
    EXPECT_LE(place - std::min(place, text().placeAt({0, 12})), 200U);
    EXPECT_GE(text().placeAt({0, 40}), place);
    // A match that is found comes into sight.
    show(ReportMoment::found);
    const std::size_t match = state_.matches->places[state_.currentMatch].begin;
    EXPECT_TRUE(text().viewport()->rect().contains(text().rectOf(match).center().toPoint()));
}

TEST_F(SupportReportViewTest, IsReadAloudInTheUnitsOfWhoeverReads) {
    showText("Größe: \U0001F511 x\n\n  second line");
    text().select(0, 0);
    QAccessibleInterface* told = QAccessible::queryAccessibleInterface(&text());
    ASSERT_NE(told->textInterface(), nullptr);
    EXPECT_TRUE(told->state().readOnly);
    QAccessibleTextInterface& spoken = *told->textInterface();
    const QString all = QString::fromStdString(state_.text->text);
    EXPECT_EQ(spoken.characterCount(), all.size());
    for (int begin = 0; begin <= all.size(); ++begin) {
        if (begin < all.size() && all[begin].isLowSurrogate()) {
            continue;
        }
        EXPECT_EQ(spoken.text(begin, static_cast<int>(all.size())), all.mid(begin)) << begin;
    }
    spoken.setSelection(0, 0, 5);
    EXPECT_EQ(text().selectedText(), "Größe");
    spoken.setCursorPosition(12);
    EXPECT_EQ(spoken.cursorPosition(), 12);
    int begin = 0;
    int end = 0;
    EXPECT_EQ(spoken.textAtOffset(15, QAccessible::LineBoundary, &begin, &end), "  second line");
    EXPECT_EQ(all.mid(begin, end - begin), "  second line");
    EXPECT_EQ(spoken.textAtOffset(15, QAccessible::WordBoundary, &begin, &end), "second");
    // All lines are come to, from the first to the last and back.
    QStringList lines{spoken.textAtOffset(0, QAccessible::LineBoundary, &begin, &end)};
    for (int line = 0; line < 5 && end < all.size(); ++line) {
        lines << spoken.textAfterOffset(begin, QAccessible::LineBoundary, &begin, &end);
    }
    EXPECT_EQ(lines.join(u'\n'), all);
    EXPECT_EQ(spoken.textBeforeOffset(begin, QAccessible::LineBoundary, &begin, &end), "");
    EXPECT_EQ(spoken.textBeforeOffset(begin, QAccessible::WordBoundary, &begin, &end), "x");
}

} // namespace
} // namespace vellmark::tests
