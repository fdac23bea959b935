#include "platform/PreferencesFile.h"
#include "presentation/AppAppearance.h"
#include "presentation/LanguageManager.h"
#include "presentation/WindowPresenceController.h"
#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>

namespace vellmark::tests {
namespace {

class ChosenSettingsTest : public testing::Test {
protected:
    TemporaryDirectory directory_;
    std::unique_ptr<Preferences> preferences_ =
        makePreferencesFile(directory_ / "preferences.json");
};

TEST_F(ChosenSettingsTest, LanguageFollowsTheSystemUntilOneIsChosen) {
    const UserLocale swiss{{"de"}, "de_CH"};
    int changes = 0;
    LanguageManager language(*preferences_, swiss);
    language.onChange = [&] { ++changes; };
    EXPECT_EQ(language.words(), Localization("de", "de_CH"));

    language.choose("de");
    EXPECT_EQ(changes, 0) << "the same words";
    language.choose("en");
    EXPECT_EQ(changes, 1);
    // German formats in English sentences would be neither.
    EXPECT_EQ(language.words(), Localization("en"));
    language.choose("klingon");
    EXPECT_EQ(language.setting(), "en");

    EXPECT_EQ(LanguageManager(*preferences_, swiss).words(), Localization("en"));
    EXPECT_EQ(LanguageManager(*preferences_, swiss, "de").words(), Localization("de", "de_CH"));
}

TEST_F(ChosenSettingsTest, TakesTheFirstOfTheUsersLanguagesThatThereIs) {
    const UserLocale user{{"pt", "fr", "de"}, "fr_CH"};
    EXPECT_EQ(LanguageManager(*preferences_, user).words(), Localization("fr", "fr_CH"));
    EXPECT_EQ(LanguageManager(*preferences_, {{"pt", "nl"}, "pt_BR"}).words(), Localization("en"));
    // The C locale names no language.
    const UserLocale plain = UserLocale::of({{"LC_ALL", "C.UTF-8"}, {"LANG", "de_DE.UTF-8"}});
    EXPECT_EQ(LanguageManager(*preferences_, plain).words(), Localization("en"));
    preferences_->setString("AppLanguage", "nonsense");
    EXPECT_EQ(LanguageManager(*preferences_, user).setting(), "system");
    EXPECT_EQ(chosenLanguage(*preferences_), "");
    for (const std::string_view code : Localization::languages()) {
        LanguageManager(*preferences_, user).choose(std::string(code));
        EXPECT_EQ(LanguageManager(*preferences_, user).words().languageCode(), code);
        EXPECT_EQ(chosenLanguage(*preferences_), code);
    }
}

TEST_F(ChosenSettingsTest, AppearanceFollowsTheSystemUntilOneIsChosen) {
    AppAppearance appearance(*preferences_);
    EXPECT_EQ(appearance.chosenScheme(), ColorScheme::noPreference);
    EXPECT_TRUE(appearance.isDark(ColorScheme::dark, false));
    EXPECT_FALSE(appearance.isDark(ColorScheme::light, true));
    EXPECT_TRUE(appearance.isDark(ColorScheme::noPreference, true));
    appearance.choose(AppAppearance::Setting::light);
    EXPECT_FALSE(appearance.isDark(ColorScheme::dark, true));
    EXPECT_EQ(appearance.chosenScheme(), ColorScheme::light);
    EXPECT_EQ(preferences_->string("AppAppearance"), "light");
    EXPECT_EQ(AppAppearance(*preferences_).setting(), AppAppearance::Setting::light);
}

TEST(WindowPresence, IsRegularWhileAWindowIsOpen) {
    std::vector<ActivationPolicy> switches;
    WindowPresenceController presence([&](ActivationPolicy policy) { switches.push_back(policy); });
    presence.windowOpened("main");
    presence.windowOpened("about");
    presence.windowOpened("main");
    presence.windowClosed("main");
    EXPECT_TRUE(presence.hasOpenWindows());
    presence.windowClosed("about");
    presence.windowClosed("about");
    EXPECT_EQ(switches, (std::vector{ActivationPolicy::regular, ActivationPolicy::accessory}));
}

} // namespace
} // namespace vellmark::tests
