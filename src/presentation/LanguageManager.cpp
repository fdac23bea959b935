#include "presentation/LanguageManager.h"

#include <algorithm>
#include <string_view>

namespace vellmark {
namespace {

constexpr std::string_view preferenceKey = "AppLanguage";
constexpr std::string_view systemSetting = "system";
constexpr const char* fallback = "en";

bool isSpoken(std::string_view code) {
    return code == "de" || code == "en";
}

} // namespace

Localization localizationFor(const UserLocale& user, const std::string& language) {
    std::string code = language.empty() ? user.languageCode : language;
    if (!isSpoken(code)) {
        code = fallback;
    }
    const bool formatsFit = user.formatIdentifier.starts_with(code);
    return Localization(code, formatsFit ? user.formatIdentifier : std::string());
}

const std::vector<std::string>& LanguageManager::settings() {
    static const std::vector<std::string> all{std::string(systemSetting), "de", "en"};
    return all;
}

LanguageManager::LanguageManager(Preferences& preferences, UserLocale system, std::string forced)
    : preferences_(preferences), system_(std::move(system)), forced_(std::move(forced)),
      setting_(preferences.string(preferenceKey).value_or(std::string(systemSetting))),
      words_(fallback) {
    if (std::ranges::find(settings(), setting_) == settings().end()) {
        setting_ = systemSetting;
    }
    words_ = makeWords();
}

void LanguageManager::choose(const std::string& setting) {
    if (std::ranges::find(settings(), setting) == settings().end()) {
        return;
    }
    forced_.clear();
    setting_ = setting;
    preferences_.setString(preferenceKey, setting);
    changeWords();
}

void LanguageManager::takeSetting() {
    std::string kept = preferences_.string(preferenceKey).value_or(std::string(systemSetting));
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
