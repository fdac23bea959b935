#pragma once

#include "model/AgentProviderID.h"
#include "platform/Machine.h"
#include "platform/Preferences.h"
#include "text/Localization.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vellmark {

class LaunchAtLoginController;

/// One setting of the program, as the terminal lists it and the settings page shows it.
struct SettingItem {
    enum class Kind {
        choice,     ///< one of `values`
        toggle,     ///< "on" or "off"
        timeOfDay,  ///< "22:00"
        loginItem,  ///< "on" or "off", as the system has it
        order,      ///< the agents' identifiers, with commas between them
        agents,     ///< the identifiers of those that are shown, or "none"
        executable, ///< a path, or "automatic"
        way,        ///< one of `values`, for the readings of `agent`
        minutes,    ///< a whole number within the limits below, or "automatic"
    };
    /// What the user types: "first-figure".
    std::string name;
    Kind kind = Kind::choice;
    /// Empty where the system keeps the setting.
    std::string preferenceKey;
    /// What it is called; with ".hint", what it does; with "." and a value, what that is called.
    std::string wordsKey;
    /// The values of a choice, the default first.
    /// Of a time of the day, the default alone.
    std::vector<std::string> values;
    /// Whose setting it is; absent for the program's own.
    std::optional<AgentProviderID> agent;

    bool operator==(const SettingItem&) const = default;
};

/// Why a value was refused, for the user.
struct SettingRefusal {
    std::string key;
    /// What was asked for, and the reason or what may be set.
    std::string asked;
    std::string detail;

    std::string text(const Localization& words) const { return words.format(key, {asked, detail}); }
    bool operator==(const SettingRefusal&) const = default;
};

/// All settings in one list, to be read and changed as text. Main thread. Changes are kept at once;
/// who runs with them takes them over when the preferences tell of it.
class SettingsCatalog {
public:
    static constexpr int leastMinutes = 1;
    static constexpr int mostMinutes = 24 * 60;

    SettingsCatalog(Preferences& preferences, const Machine& machine,
                    LaunchAtLoginController& launchAtLogin);

    const std::vector<SettingItem>& items() const { return items_; }
    /// Null when there is no setting of this name.
    const SettingItem* find(std::string_view name) const;

    /// The value that holds, in the form in which it is set.
    std::string value(const SettingItem& item) const;
    /// The value that holds without a choice of the user's.
    std::string defaultValue(const SettingItem& item) const;
    /// What may be set: "left, used", "1-1440, automatic".
    std::string allowedText(const SettingItem& item) const;
    std::string title(const SettingItem& item, const Localization& words) const;
    /// The value in words: "Every 10 minutes", "~/bin/claude".
    std::string valueText(const SettingItem& item, const Localization& words) const;

    std::optional<SettingRefusal> set(const SettingItem& item, const std::string& text);
    std::optional<SettingRefusal> reset(const SettingItem& item);
    /// All but what the system keeps: whether the program starts at login stays as it is.
    void resetAll();

private:
    std::optional<SettingRefusal> setTimeOfDay(const SettingItem& item, const std::string& text);
    std::optional<SettingRefusal> setMinutes(const SettingItem& item, const std::string& text);
    std::optional<SettingRefusal> setExecutable(const SettingItem& item, const std::string& text);
    std::optional<SettingRefusal> setLoginItem(const SettingItem& item, const std::string& text);
    std::optional<SettingRefusal> setAgents(const SettingItem& item, const std::string& text);
    SettingRefusal notAllowed(const SettingItem& item, const std::string& text) const;

    Preferences& preferences_;
    const Machine& machine_;
    LaunchAtLoginController& launchAtLogin_;
    std::vector<SettingItem> items_;
};

} // namespace vellmark
