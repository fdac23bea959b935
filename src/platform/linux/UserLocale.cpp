#include "platform/UserLocale.h"

#include <algorithm>
#include <initializer_list>
#include <string_view>

namespace vellmark {

namespace {

/// The first of the variables that is set, as POSIX ranks them, without codeset and modifier
/// ("de_CH.UTF-8@euro" is "de_CH"). Empty for the "C" locale, which names no language.
std::string localeName(const Environment& environment, std::initializer_list<const char*> names) {
    for (const char* name : names) {
        const auto found = environment.find(name);
        if (found != environment.end() && !found->second.empty()) {
            const std::string identifier =
                found->second.substr(0, found->second.find_first_of(".@"));
            return identifier == "C" || identifier == "POSIX" ? std::string() : identifier;
        }
    }
    return {};
}

/// "fr_CH" is "fr".
std::string languageOf(std::string_view identifier) {
    return std::string(identifier.substr(0, identifier.find_first_of("_.@")));
}

/// LANGUAGE lists languages ("fr_CH:de") that are preferred to the locale's. As with gettext, it
/// does not count in the "C" locale.
std::vector<std::string> languagesOf(const Environment& environment) {
    const std::string locale = localeName(environment, {"LC_ALL", "LC_MESSAGES", "LANG"});
    if (locale.empty()) {
        return {};
    }
    std::vector<std::string> codes;
    const auto list = environment.find("LANGUAGE");
    std::string_view rest = list == environment.end() ? std::string_view() : list->second;
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find(':'), rest.size());
        if (end > 0) {
            codes.push_back(languageOf(rest.substr(0, end)));
        }
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    codes.push_back(languageOf(locale));
    return codes;
}

} // namespace

UserLocale UserLocale::of(const Environment& environment) {
    return {
        .languageCodes = languagesOf(environment),
        .formatIdentifier = localeName(environment, {"LC_ALL", "LC_TIME", "LC_NUMERIC", "LANG"}),
    };
}

} // namespace vellmark
