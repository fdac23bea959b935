#include "screenshots/SampleActivity.h"
#include "screenshots/SampleStates.h"
#include "ui/QtEnvironment.h"
#include "ui/kit/Choice.h"
#include "ui/window/ActivityList.h"
#include "ui/window/ActivityPage.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QLineEdit>
#include <QScrollBar>
#include <gtest/gtest.h>

namespace vellmark::tests {
namespace {

/// What the least window leaves beside the sidebar.
constexpr QSize leastPage(792, 680);

class ActivityPageTest : public ::testing::Test {
protected:
    ActivityPageTest() {
        page_.resize(leastPage);
        page_.show();
        EXPECT_TRUE(becomesActive(page_));
    }
    void show(std::size_t count, const std::string& language = "en") {
        ActivityPageContent content =
            activityPageContent(samples::normal(), samples::now(), samples::words(language));
        content.entries = entries_;
        content.entryCount = count;
        page_.setContent(content);
        settle();
    }
    void showAll() { show(entries_->size()); }
    ActivityList& list() { return page_.list(); }
    int rowCount() { return list().model()->rowCount(); }
    QString text(int row) { return list().model()->index(row, 0).data().toString(); }
    int rowWith(const QString& words) {
        for (int row = 0; row < rowCount(); ++row) {
            if (text(row).contains(words)) {
                return row;
            }
        }
        return -1;
    }
    int place() { return list().verticalScrollBar()->value(); }
    int end() { return list().verticalScrollBar()->maximum(); }
    bool says(const QString& words) { return tests::says(page_, words); }
    QAbstractButton* button(const QString& title) { return partNamed(page_, title); }
    QLineEdit& search() { return *page_.findChild<QLineEdit*>(); }
    static QString clipboard() { return QApplication::clipboard()->text(); }

    int rests_ = 0;
    int saves_ = 0;
    ActivityPageActions actions_{.save = [this] { ++saves_; }, .rest = [this] { ++rests_; }};
    ActivityPage page_{actions_, nullptr};
    std::shared_ptr<std::vector<ActivityEntry>> entries_ =
        std::make_shared<std::vector<ActivityEntry>>(samples::activity(samples::words("en")));
};

TEST_F(ActivityPageTest, FollowsNewEntriesUntilItIsScrolledUp) {
    *entries_ = samples::longActivity(3000, samples::words("en"));
    show(entries_->size() - 200);
    ASSERT_GT(end(), 0);
    EXPECT_EQ(place(), end());
    EXPECT_TRUE(says("Follows new entries"));
    const int before = end();
    show(entries_->size() - 100);
    EXPECT_GT(end(), before);
    EXPECT_EQ(place(), end());

    list().verticalScrollBar()->setValue(40);
    EXPECT_TRUE(says("Not following: you are further up"));
    showAll();
    EXPECT_EQ(place(), 40) << "what is read stays where it is";
    ASSERT_NE(button("To the newest"), nullptr);
    button("To the newest")->click();
    EXPECT_EQ(place(), end());
    EXPECT_TRUE(says("Follows new entries"));
}

TEST_F(ActivityPageTest, IsReadAndCopiedWithTheKeysAlone) {
    showAll();
    search().setFocus(Qt::TabFocusReason);
    pressKey(page_, Qt::Key_Down);
    ASSERT_TRUE(list().hasFocus());
    EXPECT_EQ(list().currentIndex().row(), rowCount() - 1);
    pressKey(page_, Qt::Key_Home);
    EXPECT_EQ(list().currentIndex().row(), 1) << "a day's name is no row to stand on";
    EXPECT_EQ(place(), 0);
    const int folded = rowCount();
    pressKey(page_, Qt::Key_Right);
    EXPECT_EQ(rowCount(), folded + 9) << "nine quiet refreshes";
    pressKey(page_, Qt::Key_Down);
    pressKey(page_, Qt::Key_Return);
    EXPECT_EQ(rowCount(), folded + 14);
    pressKey(page_, Qt::Key_Left);
    pressKey(page_, Qt::Key_Down, Qt::ShiftModifier);
    pressKey(page_, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(clipboard().count('\n'), 10) << "two refreshes with five entries each";
    EXPECT_TRUE(clipboard().startsWith("2025-11-19 "));
    pressKey(page_, Qt::Key_A, Qt::ControlModifier);
    pressKey(page_, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(clipboard().count('\n'), static_cast<qsizetype>(entries_->size()));
}

TEST_F(ActivityPageTest, FindsAsOneTypesAndSaysSoWhereThereIsNothing) {
    showAll();
    search().setText("overloaded");
    EXPECT_TRUE(says(QString("1 of %1").arg(entries_->size())));
    button("Copy")->click();
    EXPECT_TRUE(clipboard().contains("error claude: "));
    EXPECT_EQ(clipboard().count('\n'), 1);
    search().setText("xyz");
    EXPECT_TRUE(says("No entry matches."));
    EXPECT_FALSE(button("Copy")->isEnabled());
    EXPECT_TRUE(button("Save …")->isEnabled()) << "the whole log is saved";
    button("Show all")->click();
    EXPECT_TRUE(says(QString("%1 entries").arg(entries_->size())));
    button("Errors")->click();
    EXPECT_TRUE(says(QString("2 of %1").arg(entries_->size())));
    auto* subject = page_.findChild<QComboBox*>();
    subject->setCurrentIndex(subject->findText("Codex"));
    emit subject->activated(subject->currentIndex());
    EXPECT_TRUE(says(QString("1 of %1").arg(entries_->size())));
    button("Save …")->click();
    EXPECT_EQ(saves_, 1);
}

TEST_F(ActivityPageTest, ShowsALongReasonWhole) {
    showAll();
    const QModelIndex error = list().model()->index(rowWith("overloaded"), 0);
    const QModelIndex next = error.siblingAtRow(error.row() + 1);
    list().scrollTo(error);
    const int height = list().visualRect(error).height();
    list().setFocus(Qt::TabFocusReason);
    list().setCurrentIndex(error);
    pressKey(page_, Qt::Key_Right);
    settle();
    EXPECT_GE(list().visualRect(error).height(), height + 2 * 16);
    EXPECT_EQ(list().visualRect(next).top(), list().visualRect(error).bottom() + 1);
    pressKey(page_, Qt::Key_Left);
    settle();
    EXPECT_EQ(list().visualRect(error).height(), height);
}

TEST_F(ActivityPageTest, SpeaksAnotherLanguageAtOnce) {
    showAll();
    entries_ =
        std::make_shared<std::vector<ActivityEntry>>(samples::activity(samples::words("de")));
    show(entries_->size(), "de");
    EXPECT_TRUE(says("Folgt neuen Einträgen"));
    EXPECT_GE(rowWith("9 Aktualisierungen ohne Neues"), 0);
    EXPECT_EQ(text(0), "Gestern, 19. November");
}

TEST_F(ActivityPageTest, GivesItsEntriesBackWhenNobodySeesThem) {
    showAll();
    const std::weak_ptr<std::vector<ActivityEntry>> held = entries_;
    entries_.reset();
    page_.hide();
    EXPECT_TRUE(held.expired());
    EXPECT_EQ(rests_, 1);
    EXPECT_EQ(rowCount(), 0);
    entries_ = std::make_shared<std::vector<ActivityEntry>>();
    page_.show();
    showAll();
    EXPECT_FALSE(list().isVisible());
    EXPECT_EQ(button("Show all"), nullptr);
    EXPECT_FALSE(button("Save …")->isEnabled());
}

TEST_F(ActivityPageTest, TellsEveryRowToAssistiveSoftware) {
    showAll();
    QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(&list());
    ASSERT_NE(spoken, nullptr);
    EXPECT_EQ(spoken->role(), QAccessible::List);
    EXPECT_EQ(spoken->text(QAccessible::Name), "Activity");
    ASSERT_EQ(spoken->childCount(), rowCount());
    for (int row = 0; row < rowCount(); ++row) {
        QAccessibleInterface* child = spoken->child(row);
        ASSERT_NE(child, nullptr);
        EXPECT_TRUE(child->text(QAccessible::Name).contains(text(row)));
    }
}

} // namespace
} // namespace vellmark::tests
