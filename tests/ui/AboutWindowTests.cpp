#include "screenshots/SampleStates.h"
#include "ui/AboutWindow.h"

#include <QCoreApplication>
#include <QLabel>
#include <gtest/gtest.h>

namespace vellmark {
namespace {

TEST(AboutWindow, HasRoomForEverySentence) {
    for (const char* language : {"de", "en", "es", "fr", "it"}) {
        AboutWindow window({.open = [](AboutLink) {}, .openURL = [](const std::string&) {}});
        window.setContent(aboutPageContent(samples::words(language)));
        window.show();
        QCoreApplication::sendPostedEvents();
        for (const QLabel* label : window.findChildren<QLabel*>()) {
            EXPECT_GE(label->height(), label->heightForWidth(label->width()))
                << label->text().toStdString();
            EXPECT_LT(label->geometry().bottom(), window.height());
        }
    }
}

} // namespace
} // namespace vellmark
