#include "screenshots/SampleStates.h"
#include "support/Matchers.h"
#include "ui/LegalWindow.h"
#include "ui/QtEnvironment.h"

#include <QAbstractButton>
#include <QCoreApplication>
#include <QScrollArea>
#include <QScrollBar>

namespace vellmark::tests {
namespace {

class LegalWindowTest : public ::testing::Test {
protected:
    void show(LegalDocument document, bool needsNotice, const std::string& language = "en") {
        window_.setContent(legalWindowContent(document, needsNotice, samples::words(language)));
        window_.show();
        QCoreApplication::sendPostedEvents();
    }
    QAbstractButton* button(const QString& title) { return partNamed(window_, title); }
    int scrolled() { return window_.findChild<QScrollArea*>()->verticalScrollBar()->value(); }

    RecordedActions recorded_;
    LegalWindow window_{{.choose = recorded_.note("choose"), .accept = recorded_.note("accept")}};
};

TEST_F(LegalWindowTest, ShowsBothTextsWholeInEveryLanguage) {
    window_.resize(LegalWindow::leastSize);
    for (const char* language : {"de", "en", "es", "fr", "it"}) {
        for (const LegalDocument document : {LegalDocument::terms, LegalDocument::privacy}) {
            show(document, true, language);
            expectNothingIsCut(window_, language);
            EXPECT_GT(window_.findChild<QScrollArea*>()->verticalScrollBar()->maximum(), 0);
        }
    }
}

TEST_F(LegalWindowTest, AcceptsOnlyWhatIsDueAndBeginsAnotherTextAtItsTop) {
    show(LegalDocument::terms, true);
    pressKey(window_, Qt::Key_End);
    EXPECT_GT(scrolled(), 0);
    button("Privacy")->click();
    show(LegalDocument::privacy, true);
    EXPECT_EQ(scrolled(), 0);
    pressKey(window_, Qt::Key_PageDown);
    const int place = scrolled();
    EXPECT_GT(place, 0);
    button("Accept")->click();
    show(LegalDocument::privacy, false);
    EXPECT_EQ(scrolled(), place) << "what is being read stays where it is";
    EXPECT_EQ(button("Accept"), nullptr);
    EXPECT_THAT(recorded_.calls, ElementsAre("choose 1", "accept"));
    button("Close")->click();
    EXPECT_FALSE(window_.isVisible());
}

TEST_F(LegalWindowTest, GoesFromTheTextsToTheButtonsByTab) {
    show(LegalDocument::terms, true);
    std::vector<QString> titles;
    for (const QWidget* stop : tabStops(window_)) {
        titles.push_back(qobject_cast<const QAbstractButton*>(stop)->text());
    }
    // Among the texts the arrow keys choose.
    EXPECT_THAT(titles, ElementsAre("Terms of Use", "Close", "Accept"));
}

} // namespace
} // namespace vellmark::tests
