#include "platform/UserLocale.h"

#include "platform/macos/CoreFoundationOwner.h"

namespace vellmark {

namespace {

/// The user's list without regions ("de-CH" is "de").
std::vector<std::string> preferredLanguages() {
    const CFOwner<CFArrayRef> languages(CFLocaleCopyPreferredLanguages());
    std::vector<std::string> codes;
    const CFIndex count = languages ? CFArrayGetCount(languages.get()) : 0;
    for (CFIndex index = 0; index < count; ++index) {
        const auto tag =
            textOfCFString(CFArrayGetValueAtIndex(languages.get(), index)).value_or("");
        codes.push_back(tag.substr(0, tag.find_first_of("-_")));
    }
    return codes;
}

} // namespace

UserLocale UserLocale::of(const Environment&) {
    const CFOwner<CFLocaleRef> current(CFLocaleCopyCurrent());
    return {
        .languageCodes = preferredLanguages(),
        .formatIdentifier =
            current ? textOfCFString(CFLocaleGetIdentifier(current.get())).value_or("") : "",
    };
}

} // namespace vellmark
