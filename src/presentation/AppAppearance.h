#pragma once

#include "platform/Preferences.h"
#include "platform/SystemAppearance.h"

#include <functional>
#include <string>
#include <string_view>

namespace vellmark {

/// Light or dark: the system's choice, or the user's, kept under "AppAppearance" ("system",
/// "light", "dark"). Main thread.
class AppAppearance {
public:
    static constexpr std::string_view preferenceKey = "AppAppearance";

    enum class Setting { system, light, dark };

    explicit AppAppearance(Preferences& preferences);

    Setting setting() const { return setting_; }
    void choose(Setting setting);
    /// Takes over what another process has chosen.
    void takeSetting();

    /// The user's choice in place of the system's; `noPreference` where that is to hold.
    ColorScheme chosenScheme() const;

    /// What the setting means while the system is as `scheme` says; `fallbackIsDark` decides where
    /// the system has no preference.
    bool isDark(ColorScheme scheme, bool fallbackIsDark) const;

    std::function<void()> onChange;

private:
    Setting kept() const;

    Preferences& preferences_;
    Setting setting_ = Setting::system;
};

} // namespace vellmark
