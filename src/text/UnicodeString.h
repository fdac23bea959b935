#pragma once

#include <unicode/stringpiece.h>
#include <unicode/unistr.h>

#include <cstdint>
#include <string_view>

namespace vellmark {

/// `text` in the form of ICU's strings; for the sources of this folder only.
inline icu::UnicodeString unicodeString(std::string_view text) {
    return icu::UnicodeString::fromUTF8({text.data(), static_cast<std::int32_t>(text.size())});
}

} // namespace vellmark
