#include "app/WindowController.h"
#include "platform/PreferencesFile.h"
#include "support/TemporaryDirectory.h"

#include <QGuiApplication>
#include <QScreen>
#include <gtest/gtest.h>

namespace vellmark::tests {
namespace {

class WindowControllerTest : public testing::Test {
protected:
    TemporaryDirectory directory_;
    std::unique_ptr<Preferences> preferences_ =
        makePreferencesFile(directory_ / "preferences.json");
    QSize leastSize_{0, 0};
    WindowPresenceController presence_{[](ActivationPolicy) {}};
    WindowController controller_{{.identifier = "main",
                                  .autosaveName = "Main",
                                  .make =
                                      [this] {
                                          auto window = std::make_unique<QWidget>();
                                          window->setMinimumSize(leastSize_);
                                          return window;
                                      },
                                  .title = [] { return "Main"; },
                                  .onVisibilityChange = {}},
                                 presence_,
                                 *preferences_};
};

// A task bar closes windows that are minimized.
TEST_F(WindowControllerTest, AMinimizedWindowIsOpenUntilItIsClosed) {
    controller_.show();
    controller_.window()->showMinimized();
    EXPECT_TRUE(presence_.hasOpenWindows());
    controller_.window()->close();
    EXPECT_FALSE(presence_.hasOpenWindows());
    EXPECT_TRUE(preferences_->string("Frame Main"));
}

TEST_F(WindowControllerTest, NoWindowIsLargerThanTheFreeAreaOfItsScreen) {
    const QRect free = QGuiApplication::primaryScreen()->availableGeometry();
    leastSize_ = free.size() + QSize(300, -100);
    controller_.show();
    const QSize least = controller_.window()->minimumSize();
    EXPECT_LE(least.width(), free.width());
    EXPECT_EQ(least.height(), leastSize_.height());
    controller_.window()->resize(free.size() * 2);
    controller_.window()->close();
    controller_.show();
    const QRect frame = controller_.window()->frameGeometry();
    EXPECT_TRUE(free.contains(frame))
        << frame.x() << ' ' << frame.y() << ' ' << frame.width() << ' ' << frame.height();
}

} // namespace
} // namespace vellmark::tests
