#include "text/SearchWords.h"

#include "text/UnicodeString.h"

#include <unicode/normalizer2.h>
#include <unicode/uchar.h>

#include <algorithm>

namespace vellmark {

namespace {

/// Without case and accents; every kind of blank is one plain blank.
std::string folded(std::string_view text) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2* decomposition = icu::Normalizer2::getNFKDInstance(status);
    icu::UnicodeString source = unicodeString(text);
    source.foldCase();
    if (U_SUCCESS(status)) {
        const icu::UnicodeString decomposed = decomposition->normalize(source, status);
        if (U_SUCCESS(status)) {
            source = decomposed;
        }
    }
    icu::UnicodeString result;
    for (std::int32_t index = 0; index < source.length(); index = source.moveIndex32(index, 1)) {
        const UChar32 character = source.char32At(index);
        if (u_isUWhiteSpace(character)) {
            result.append(u' ');
        } else if (u_charType(character) != U_NON_SPACING_MARK) {
            result.append(static_cast<UChar32>(character == 0x2019 ? '\'' : character));
        }
    }
    std::string utf8;
    result.toUTF8String(utf8);
    return utf8;
}

} // namespace

SearchWords::SearchWords(std::string_view query) {
    const std::string text = folded(query);
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find(' ', start), text.size());
        if (end > start) {
            words_.push_back(text.substr(start, end - start));
        }
        start = end + 1;
    }
}

bool SearchWords::areIn(std::string_view text) const {
    if (words_.empty()) {
        return true;
    }
    const std::string searched = folded(text);
    return std::ranges::all_of(
        words_, [&](const std::string& word) { return searched.find(word) != std::string::npos; });
}

} // namespace vellmark
