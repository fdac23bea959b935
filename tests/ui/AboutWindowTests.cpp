#include "screenshots/SampleStates.h"
#include "ui/AboutWindow.h"
#include "ui/QtEnvironment.h"

#include <QLabel>
#include <gtest/gtest.h>

namespace vellmark::tests {
namespace {

TEST(AboutWindow, HasRoomForEverySentence) {
    for (const char* language : {"de", "en", "es", "fr", "it"}) {
        AboutWindow window({.open = [](AboutLink) {}, .openURL = [](const std::string&) {}});
        window.setContent(aboutPageContent(samples::words(language)));
        window.show();
        settle();
        expectNothingIsCut(window, language);
        for (const QLabel* label : window.findChildren<QLabel*>()) {
            EXPECT_LT(label->geometry().bottom(), window.height());
        }
    }
}

} // namespace
} // namespace vellmark::tests
