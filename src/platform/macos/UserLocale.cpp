#include "platform/UserLocale.h"

#include "platform/macos/CoreFoundationOwner.h"

namespace vellmark {

namespace {

/// The language at the top of the user's list ("de-CH" is "de").
std::string preferredLanguage() {
    const CFOwner<CFArrayRef> languages(CFLocaleCopyPreferredLanguages());
    if (!languages || CFArrayGetCount(languages.get()) == 0) {
        return {};
    }
    const auto tag = textOfCFString(CFArrayGetValueAtIndex(languages.get(), 0)).value_or("");
    return tag.substr(0, tag.find_first_of("-_"));
}

} // namespace

UserLocale UserLocale::of(const Environment&) {
    const CFOwner<CFLocaleRef> current(CFLocaleCopyCurrent());
    return {
        .languageCode = preferredLanguage(),
        .formatIdentifier =
            current ? textOfCFString(CFLocaleGetIdentifier(current.get())).value_or("") : "",
    };
}

} // namespace vellmark
