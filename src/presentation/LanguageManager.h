#pragma once

#include "platform/Preferences.h"
#include "platform/UserLocale.h"
#include "text/Localization.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace vellmark {

/// The words of `language`, or, where that is empty or unknown, of the first of the user's own
/// languages that there are texts in; English where there is none. With the user's formats where
/// they are of that language: another's would mix the two in one sentence.
Localization localizationFor(const UserLocale& user, const std::string& language);

/// The codes of the languages there are, with `separator` between them.
std::string languageList(std::string_view separator);

/// The code of the language that the user has chosen for the programs; empty for the system's.
std::string chosenLanguage(const Preferences& preferences);

/// The language of the application: the system's, or one the user has chosen, kept under
/// "AppLanguage" ("system" or the code of a language). Main thread.
class LanguageManager {
public:
    static constexpr std::string_view preferenceKey = "AppLanguage";

    /// `forced` overrides the setting for this run and may be empty.
    LanguageManager(Preferences& preferences, UserLocale system, std::string forced = {});

    /// "system" or a language's code.
    const std::string& setting() const { return setting_; }
    void choose(const std::string& setting);
    /// Takes over what another process has chosen.
    void takeSetting();
    /// The settings there are.
    static const std::vector<std::string>& settings();

    /// The words and formats that hold now.
    const Localization& words() const { return words_; }

    /// Called after the words have changed.
    std::function<void()> onChange;

private:
    void changeWords();
    Localization makeWords() const;

    Preferences& preferences_;
    UserLocale system_;
    std::string forced_;
    std::string setting_;
    Localization words_;
};

} // namespace vellmark
