#include "text/Capitalization.h"

#include "text/UnicodeString.h"

#include <unicode/uchar.h>

namespace vellmark {

std::string capitalized(std::string_view text) {
    const icu::UnicodeString source = unicodeString(text);
    icu::UnicodeString result;
    bool insideWord = false;
    for (std::int32_t index = 0; index < source.length(); index = source.moveIndex32(index, 1)) {
        const UChar32 character = source.char32At(index);
        result.append(insideWord ? u_tolower(character) : u_totitle(character));
        // An apostrophe or a combining mark belongs to the word that it stands in.
        if (!(insideWord && u_hasBinaryProperty(character, UCHAR_CASE_IGNORABLE))) {
            insideWord = u_hasBinaryProperty(character, UCHAR_CASED) != 0;
        }
    }
    std::string utf8;
    result.toUTF8String(utf8);
    return utf8;
}

} // namespace vellmark
