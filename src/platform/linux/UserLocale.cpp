#include "platform/UserLocale.h"

#include <initializer_list>

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

} // namespace

UserLocale UserLocale::of(const Environment& environment) {
    const std::string messages = localeName(environment, {"LC_ALL", "LC_MESSAGES", "LANG"});
    return {
        .languageCode = messages.substr(0, messages.find('_')),
        .formatIdentifier = localeName(environment, {"LC_ALL", "LC_TIME", "LC_NUMERIC", "LANG"}),
    };
}

} // namespace vellmark
