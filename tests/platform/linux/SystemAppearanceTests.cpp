#include "platform/SystemAppearance.h"
#include "platform/linux/BusLibrary.h"
#include "platform/linux/PrivateBus.h"
#include "support/PollLoop.h"

#include <map>
#include <mutex>

namespace vellmark::tests {
namespace {

constexpr auto settingsInterface = "org.freedesktop.portal.Settings";
using Setting = std::pair<std::string, std::string>;
const Setting scheme{"org.freedesktop.appearance", "color-scheme"};
const Setting animations{"org.gnome.desktop.interface", "enable-animations"};

/// The desktop's portal, with a thread of its own as another process would have.
class Portal {
public:
    explicit Portal(std::map<Setting, sdbus::Variant> settings)
        : settings_(std::move(settings)), connection_(sdbus::createSessionBusConnection()),
          object_(sdbus::createObject(*connection_,
                                      sdbus::ObjectPath("/org/freedesktop/portal/desktop"))) {
        bus::Interface(*object_, settingsInterface)
            .method("Read",
                    [this](const std::string& space, const std::string& key) {
                        const std::lock_guard hold(lock_);
                        const auto found = settings_.find({space, key});
                        if (found == settings_.end()) {
                            throw sdbus::Error(
                                bus::ErrorName("org.freedesktop.portal.Error.NotFound"),
                                "no such setting");
                        }
                        // Wrapped once more, as the real one does.
                        return sdbus::Variant(found->second);
                    })
            .signal<std::string, std::string, sdbus::Variant>("SettingChanged")
            .publish();
        connection_->requestName(bus::ServiceName("org.freedesktop.portal.Desktop"));
        connection_->enterEventLoopAsync();
    }
    ~Portal() { connection_->leaveEventLoop(); }

    void change(const Setting& setting, const sdbus::Variant& value) {
        object_->emitSignal("SettingChanged")
            .onInterface(settingsInterface)
            .withArguments(setting.first, setting.second, value);
    }

private:
    std::mutex lock_;
    std::map<Setting, sdbus::Variant> settings_;
    std::unique_ptr<sdbus::IConnection> connection_;
    std::unique_ptr<sdbus::IObject> object_;
};

class SystemAppearanceTest : public BusTest {
protected:
    void observe() {
        appearance_ = observeSystemAppearance(loop_, [this] { ++changes_; });
    }

    PollLoop loop_;
    int changes_ = 0;
    std::unique_ptr<SystemAppearance> appearance_;
};

TEST_F(SystemAppearanceTest, TellsAndFollowsTheDesktopsSettings) {
    Portal portal(
        {{scheme, sdbus::Variant(std::uint32_t(1))}, {animations, sdbus::Variant(false)}});
    observe();
    ASSERT_TRUE(loop_.turnUntil([this] {
        return appearance_->colorScheme() == ColorScheme::dark && appearance_->reducesMotion();
    }));
    portal.change(scheme, sdbus::Variant(std::uint32_t(2)));
    portal.change(animations, sdbus::Variant(true));
    ASSERT_TRUE(loop_.turnUntil([this] {
        return appearance_->colorScheme() == ColorScheme::light && !appearance_->reducesMotion();
    }));
    EXPECT_EQ(changes_, 4);
}

TEST_F(SystemAppearanceTest, AsksForMoreContrastWhereOneOfTheTwoSettingsDoes) {
    const Setting contrast{"org.freedesktop.appearance", "contrast"};
    const Setting desktopContrast{"org.gnome.desktop.a11y.interface", "high-contrast"};
    Portal portal({{contrast, sdbus::Variant(std::uint32_t(1))}});
    observe();
    ASSERT_TRUE(loop_.turnUntil([this] { return appearance_->increasesContrast(); }));
    portal.change(desktopContrast, sdbus::Variant(true));
    portal.change(contrast, sdbus::Variant(std::uint32_t(0)));
    portal.change(desktopContrast, sdbus::Variant(false));
    ASSERT_TRUE(loop_.turnUntil([this] { return !appearance_->increasesContrast(); }));
    EXPECT_EQ(changes_, 2);
}

TEST_F(SystemAppearanceTest, KnowsNothingFromADesktopWithoutTheseSettings) {
    Portal portal({{scheme, sdbus::Variant(std::string("dark"))}});
    observe();
    // A setting of another type or name is no answer; a good one after it still is.
    portal.change({"org.kde.kdeglobals.General", "color-scheme"}, sdbus::Variant(std::uint32_t(1)));
    portal.change(animations, sdbus::Variant(false));
    ASSERT_TRUE(loop_.turnUntil([this] { return appearance_->reducesMotion(); }));
    EXPECT_EQ(appearance_->colorScheme(), ColorScheme::noPreference);
    EXPECT_EQ(changes_, 1);
}

} // namespace
} // namespace vellmark::tests
