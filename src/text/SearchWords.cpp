#include "text/SearchWords.h"

#include "text/Characters.h"

#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace vellmark {

namespace {

/// One character without case and accents; every kind of blank is one plain blank.
std::string foldedCharacter(UChar32 character) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2* decomposition = icu::Normalizer2::getNFKDInstance(status);
    icu::UnicodeString source(character);
    source.foldCase();
    if (U_SUCCESS(status)) {
        const icu::UnicodeString decomposed = decomposition->normalize(source, status);
        if (U_SUCCESS(status)) {
            source = decomposed;
        }
    }
    icu::UnicodeString result;
    for (std::int32_t index = 0; index < source.length(); index = source.moveIndex32(index, 1)) {
        const UChar32 part = source.char32At(index);
        if (u_isUWhiteSpace(part)) {
            result.append(u' ');
        } else if (u_charType(part) != U_NON_SPACING_MARK) {
            result.append(static_cast<UChar32>(part == 0x2019 ? '\'' : part));
        }
    }
    std::string utf8;
    result.toUTF8String(utf8);
    return utf8;
}

/// Latin letters and common punctuation, folded once: a search goes through tens of thousands of
/// texts at every key press.
class FoldedCharacters {
public:
    FoldedCharacters() {
        for (std::size_t index = 0; index < latin_.size(); ++index) {
            latin_[index] = foldedCharacter(static_cast<UChar32>(index));
        }
        for (std::size_t index = 0; index < punctuation_.size(); ++index) {
            punctuation_[index] = foldedCharacter(punctuationBegin + static_cast<UChar32>(index));
        }
    }

    void append(UChar32 character, std::string& text) const {
        const auto latin = static_cast<std::size_t>(character);
        const auto punctuation = static_cast<std::size_t>(character - punctuationBegin);
        if (latin < latin_.size()) {
            text += latin_[latin];
        } else if (character >= punctuationBegin && punctuation < punctuation_.size()) {
            text += punctuation_[punctuation];
        } else {
            text += foldedCharacter(character);
        }
    }

private:
    static constexpr UChar32 punctuationBegin = 0x2000;
    std::array<std::string, 0x180> latin_;
    std::array<std::string, 0x70> punctuation_;
};

std::string folded(std::string_view text) {
    static const FoldedCharacters characters;
    std::string result;
    result.reserve(text.size());
    for (std::size_t offset = 0; offset < text.size();) {
        characters.append(static_cast<UChar32>(nextCharacter(text, offset)), result);
    }
    return result;
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
