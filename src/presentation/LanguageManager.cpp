#include "presentation/LanguageManager.h"

#include <algorithm>
#include <string_view>

namespace vellmark {
namespace {

constexpr std::string_view preferenceKey = "AppLanguage";
constexpr std::string_view systemSetting = "system";
/// Of languages that the program does not speak, most people read this one.
constexpr std::string_view lingua = "en";

bool isSpoken(std::string_view code) {
    return code == "de" || code == "en";
}

} // namespace

const std::vector<std::string>& LanguageManager::settings() {
    static const std::vector<std::string> all{std::string(systemSetting), "de", "en"};
    return all;
}

LanguageManager::LanguageManager(Preferences& preferences, UserLocale system, std::string forced)
    : preferences_(preferences), system_(std::move(system)), forced_(std::move(forced)),
      setting_(preferences.string(preferenceKey).value_or(std::string(systemSetting))),
      words_("en") {
    if (std::ranges::find(settings(), setting_) == settings().end())
        setting_ = systemSetting;
    words_ = makeWords();
}

void LanguageManager::choose(const std::string& setting) {
    if (std::ranges::find(settings(), setting) == settings().end())
        return;
    forced_.clear();
    setting_ = setting;
    preferences_.setString(preferenceKey, setting);
    Localization words = makeWords();
    if (words == words_)
        return;
    words_ = std::move(words);
    if (onChange)
        onChange();
}

Localization LanguageManager::makeWords() const {
    std::string code = system_.languageCode;
    if (!forced_.empty())
        code = forced_;
    else if (setting_ != systemSetting)
        code = setting_;
    if (!isSpoken(code))
        code = lingua;
    // Formats of another language than the texts' would mix the two in one sentence.
    const bool formatsFit = system_.formatIdentifier.starts_with(code);
    return Localization(code, formatsFit ? system_.formatIdentifier : std::string());
}

} // namespace vellmark
