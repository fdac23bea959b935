#include "presentation/AppAppearance.h"

#include <array>
#include <string_view>
#include <utility>

namespace vellmark {
namespace {

using Setting = AppAppearance::Setting;

constexpr std::array<std::pair<Setting, std::string_view>, 3> storedForms{
    {{Setting::system, "system"}, {Setting::light, "light"}, {Setting::dark, "dark"}}};

} // namespace

AppAppearance::AppAppearance(Preferences& preferences)
    : preferences_(preferences), setting_(kept()) {}

AppAppearance::Setting AppAppearance::kept() const {
    const std::string stored = preferences_.string(preferenceKey).value_or("system");
    for (const auto& [setting, form] : storedForms) {
        if (stored == form) {
            return setting;
        }
    }
    return Setting::system;
}

void AppAppearance::takeSetting() {
    if (std::exchange(setting_, kept()) != setting_ && onChange) {
        onChange();
    }
}

void AppAppearance::choose(Setting setting) {
    if (setting == setting_) {
        return;
    }
    setting_ = setting;
    for (const auto& [candidate, form] : storedForms) {
        if (candidate == setting) {
            preferences_.setString(preferenceKey, std::string(form));
        }
    }
    if (onChange) {
        onChange();
    }
}

ColorScheme AppAppearance::chosenScheme() const {
    switch (setting_) {
    case Setting::light:
        return ColorScheme::light;
    case Setting::dark:
        return ColorScheme::dark;
    case Setting::system:
        break;
    }
    return ColorScheme::noPreference;
}

bool AppAppearance::isDark(ColorScheme scheme, bool fallbackIsDark) const {
    const ColorScheme chosen = chosenScheme();
    const ColorScheme effective = chosen != ColorScheme::noPreference ? chosen : scheme;
    return effective != ColorScheme::noPreference ? effective == ColorScheme::dark : fallbackIsDark;
}

} // namespace vellmark
