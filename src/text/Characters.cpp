#include "text/Characters.h"

#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include <cstdint>

namespace vellmark {

char32_t nextCharacter(std::string_view text, std::size_t& offset) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    auto index = static_cast<std::int64_t>(offset);
    const auto length = static_cast<std::int64_t>(text.size());
    UChar32 character = 0;
    U8_NEXT_OR_FFFD(bytes, index, length, character);
    offset = static_cast<std::size_t>(index);
    return static_cast<char32_t>(character);
}

void appendCharacter(std::string& text, char32_t character) {
    char bytes[U8_MAX_LENGTH];
    std::size_t length = 0;
    U8_APPEND_UNSAFE(bytes, length, character);
    text.append(bytes, length);
}

std::size_t characterWidth(char32_t character) {
    if (character >= 0x20 && character < 0x7F) {
        return 1;
    }
    const auto codePoint = static_cast<UChar32>(character);
    switch (u_charType(codePoint)) {
    case U_NON_SPACING_MARK:
    case U_ENCLOSING_MARK:
    case U_FORMAT_CHAR:
    case U_CONTROL_CHAR:
        return 0;
    default:
        break;
    }
    switch (u_getIntPropertyValue(codePoint, UCHAR_EAST_ASIAN_WIDTH)) {
    case U_EA_FULLWIDTH:
    case U_EA_WIDE:
        return 2;
    default:
        return 1;
    }
}

} // namespace vellmark
