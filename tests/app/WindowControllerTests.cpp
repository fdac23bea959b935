#include "app/WindowController.h"
#include "platform/PreferencesFile.h"
#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>

namespace vellmark::tests {
namespace {

class WindowControllerTest : public testing::Test {
protected:
    TemporaryDirectory directory_;
    std::unique_ptr<Preferences> preferences_ =
        makePreferencesFile(directory_ / "preferences.json");
    WindowPresenceController presence_{[](ActivationPolicy) {}};
    WindowController controller_{{.identifier = "main",
                                  .autosaveName = "Main",
                                  .make = [] { return std::make_unique<QWidget>(); },
                                  .title = [] { return QStringLiteral("Main"); },
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

} // namespace
} // namespace vellmark::tests
