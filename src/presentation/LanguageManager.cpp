#include "presentation/LanguageManager.h"

#include <algorithm>
#include <string_view>

namespace vellmark {
namespace {

constexpr std::string_view systemSetting = "system";
constexpr const char* fallback = "en";

std::string firstSpoken(const std::vector<std::string>& codes) {
    const auto found = std::ranges::find_if(codes, Localization::hasLanguage);
    return found == codes.end() ? fallback : *found;
}

/// "fr" of "fr_CH".
std::string_view languageOf(std::string_view identifier) {
    return identifier.substr(0, identifier.find('_'));
}

/// "system" or the code of a language that there is.
std::string storedSetting(const Preferences& preferences) {
    std::string setting = preferences.string(LanguageManager::preferenceKey).value_or("");
    return Localization::hasLanguage(setting) ? setting : std::string(systemSetting);
}

} // namespace

Localization localizationFor(const UserLocale& user, const std::string& language) {
    const std::string code =
        Localization::hasLanguage(language) ? language : firstSpoken(user.languageCodes);
    const bool formatsFit = languageOf(user.formatIdentifier) == code;
    return Localization(code, formatsFit ? user.formatIdentifier : std::string());
}

std::string languageList(std::string_view separator) {
    std::string list;
    for (const std::string_view code : Localization::languages()) {
        list.append(list.empty() ? "" : separator).append(code);
    }
    return list;
}

std::string chosenLanguage(const Preferences& preferences) {
    std::string setting = storedSetting(preferences);
    return setting == systemSetting ? std::string() : setting;
}

const std::vector<std::string>& LanguageManager::settings() {
    static const std::vector<std::string> all = [] {
        std::vector<std::string> settings{std::string(systemSetting)};
        settings.insert(settings.end(), Localization::languages().begin(),
                        Localization::languages().end());
        return settings;
    }();
    return all;
}

LanguageManager::LanguageManager(Preferences& preferences, UserLocale system, std::string forced)
    : preferences_(preferences), system_(std::move(system)), forced_(std::move(forced)),
      setting_(storedSetting(preferences)), words_(makeWords()) {}

void LanguageManager::choose(const std::string& setting) {
    if (std::ranges::find(settings(), setting) == settings().end()) {
        return;
    }
    forced_.clear();
    setting_ = setting;
    preferences_.setString(LanguageManager::preferenceKey, setting);
    changeWords();
}

void LanguageManager::takeSetting() {
    std::string kept =
        preferences_.string(LanguageManager::preferenceKey).value_or(std::string(systemSetting));
    if (std::ranges::find(settings(), kept) == settings().end()) {
        kept = systemSetting;
    }
    if (kept != setting_) {
        forced_.clear();
        setting_ = std::move(kept);
        changeWords();
    }
}

void LanguageManager::changeWords() {
    Localization words = makeWords();
    if (words == words_) {
        return;
    }
    words_ = std::move(words);
    if (onChange) {
        onChange();
    }
}

Localization LanguageManager::makeWords() const {
    const std::string chosen = setting_ == systemSetting ? std::string() : setting_;
    return localizationFor(system_, forced_.empty() ? chosen : forced_);
}

} // namespace vellmark
