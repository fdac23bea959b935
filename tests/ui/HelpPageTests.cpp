#include "screenshots/SampleStates.h"
#include "support/Matchers.h"
#include "ui/AboutWindow.h"
#include "ui/QtEnvironment.h"
#include "ui/window/AboutPage.h"
#include "ui/window/HelpPage.h"

#include <QAbstractButton>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QLineEdit>

#include <algorithm>

namespace vellmark::tests {
namespace {

/// What the least window leaves beside the sidebar.
constexpr QSize leastPage(792, 680);

class HelpPageTest : public ::testing::Test {
protected:
    HelpPageTest() {
        page_.resize(leastPage);
        page_.show();
    }
    void show(HelpSection section, const std::string& query = {},
              const std::string& language = "en") {
        page_.setContent(helpPageContent(section, query, samples::words(language)));
        QCoreApplication::sendPostedEvents();
    }
    QAbstractButton* button(const QString& title) { return partNamed(page_, title); }

    RecordedActions recorded_;
    HelpPageActions actions_{.choose = recorded_.note("choose"),
                             .search = recorded_.note("search"),
                             .copy = recorded_.note("copy"),
                             .open = recorded_.note("open")};
    HelpPage page_{actions_, nullptr};
};

TEST_F(HelpPageTest, HasRoomForEverythingInEveryLanguage) {
    for (const char* language : {"de", "en", "es", "fr", "it"}) {
        for (const HelpSection section :
             {HelpSection::reading, HelpSection::marks, HelpSection::failures,
              HelpSection::keyboard, HelpSection::support}) {
            show(section, {}, language);
            expectNothingIsCut(page_, language);
        }
    }
}

TEST_F(HelpPageTest, AsksForWhatIsChosenTypedCopiedAndOpened) {
    show(HelpSection::reading);
    button("When something fails")->click();
    show(HelpSection::failures);
    button("Copy the command")->click();
    show(HelpSection::support);
    button("Privacy")->click();
    auto* field = page_.findChild<QLineEdit*>();
    for (const QString key : {"q", "u"}) {
        QKeyEvent press(QEvent::KeyPress, Qt::Key_Q, Qt::NoModifier, key);
        QCoreApplication::sendEvent(field, &press);
    }
    show(HelpSection::support, "qu");
    EXPECT_EQ(field->text(), "qu");
    field->setFocus();
    pressKey(page_, Qt::Key_Escape);
    EXPECT_THAT(recorded_.calls,
                ElementsAre("choose 2", "copy curl -fsSL https://chatgpt.com/codex/install.sh | sh",
                            "open 4", "search q", "search qu", "search "));
}

TEST_F(HelpPageTest, ChoosesNoSectionWhileItLooksInAll) {
    const auto isAnyChosen = [&] {
        return std::ranges::any_of(visibleParts<QAbstractButton>(page_),
                                   &QAbstractButton::isChecked);
    };
    show(HelpSection::marks);
    EXPECT_TRUE(isAnyChosen());
    show(HelpSection::marks, "token");
    EXPECT_FALSE(isAnyChosen());
    show(HelpSection::marks);
    EXPECT_TRUE(button("Marks and colours")->isChecked());
}

TEST(AboutPage, LeadsToEveryPageAndHasRoomAsTheWindowHas) {
    RecordedActions recorded;
    const AboutPageActions actions{.open = recorded.note("open"),
                                   .openURL = recorded.note("openURL")};
    AboutPage page(actions, nullptr);
    page.resize(leastPage);
    page.show();
    AboutWindow window(actions);
    window.show();
    for (const char* language : {"de", "en", "es", "fr", "it"}) {
        const AboutPageContent content = aboutPageContent(samples::words(language));
        page.setContent(content);
        QCoreApplication::sendPostedEvents();
        recorded.calls.clear();
        RecordedActions wanted;
        for (const AboutLinkContent& link : content.links) {
            wanted.note("open")(link.link);
        }
        for (const LicenceContent& part : content.licences) {
            wanted.note("openURL")(part.url);
            EXPECT_TRUE(part.url.starts_with("https://") && !part.licence.empty()) << part.name;
        }
        for (QWidget* control : page.controls()) {
            if (control->isVisible()) {
                qobject_cast<QAbstractButton*>(control)->click();
            }
        }
        EXPECT_EQ(recorded.calls, wanted.calls) << language;
        expectNothingIsCut(page, language);
        window.setContent(content);
        settle();
        expectNothingIsCut(window, language);
    }
}

} // namespace
} // namespace vellmark::tests
