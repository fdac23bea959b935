#pragma once

#include "platform/Preferences.h"
#include "platform/UserLocale.h"
#include "text/Localization.h"

#include <functional>
#include <string>
#include <vector>

namespace vellmark {

/// The words of `language` ("de", "en"; empty for the user's own; English where the catalog lacks
/// that), with the user's formats where they are of that language: another's would mix the two in
/// one sentence.
Localization localizationFor(const UserLocale& user, const std::string& language);

/// The language of the application: the system's, or one the user has chosen, kept under
/// "AppLanguage" ("system", "de", "en"). Main thread.
class LanguageManager {
public:
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
