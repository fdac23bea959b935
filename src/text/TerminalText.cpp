#include "text/TerminalText.h"

#include "text/Pattern.h"

#include <unicode/brkiter.h>
#include <unicode/bytestream.h>
#include <unicode/casemap.h>
#include <unicode/uchar.h>
#include <unicode/utext.h>
#include <unicode/utf.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <optional>

namespace vellmark {

namespace {

/// A code point with the place it was read from; `codePoint` is negative for ill-formed bytes.
struct ScannedCharacter {
    UChar32 codePoint = 0;
    std::size_t begin = 0;
    std::size_t end = 0;
};

/// ICU counts in 32 bits; nothing the program reads comes near.
std::int32_t icuLength(std::string_view text) {
    return static_cast<std::int32_t>(std::min(text.size(), std::size_t{INT32_MAX}));
}

bool isContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

/// The bytes that follow the lead byte, by its value; none for one that cannot lead.
std::size_t continuationCount(unsigned lead) {
    return lead >= 0xF5 ? 0 : (lead >= 0xF0 ? 3 : (lead >= 0xE0 ? 2 : (lead >= 0xC2 ? 1 : 0)));
}

ScannedCharacter characterAt(std::string_view text, std::size_t begin) {
    const unsigned lead = static_cast<unsigned char>(text[begin]);
    if (lead < 0x80) {
        return {static_cast<UChar32>(lead), begin, begin + 1};
    }
    const std::size_t count = continuationCount(lead);
    std::uint32_t codePoint = lead & (0x3FU >> count);
    std::size_t end = begin + 1;
    while (end <= begin + count && end < text.size() && isContinuation(text[end])) {
        codePoint = codePoint << 6 | (static_cast<unsigned char>(text[end++]) & 0x3FU);
    }
    constexpr std::array<std::uint32_t, 4> least{UINT32_MAX, 0x80, 0x800, 0x10000};
    const bool isWellFormed = end == begin + 1 + count && codePoint >= least[count] &&
                              codePoint <= 0x10FFFF && !U_IS_SURROGATE(codePoint);
    return {isWellFormed ? static_cast<UChar32>(codePoint) : -1, begin, end};
}

ScannedCharacter characterBefore(std::string_view text, std::size_t end) {
    std::size_t begin = end - 1;
    while (begin > 0 && end - begin < 4 && isContinuation(text[begin])) {
        --begin;
    }
    const ScannedCharacter character = characterAt(text, begin);
    return character.end == end ? character : ScannedCharacter{-1, end - 1, end};
}

template<typename Visit>
void forEachCharacter(std::string_view text, Visit visit) {
    for (std::size_t index = 0; index < text.size();) {
        const ScannedCharacter character = characterAt(text, index);
        visit(character);
        index = character.end;
    }
}

bool isLineBreak(UChar32 codePoint) {
    return (codePoint >= 0x0A && codePoint <= 0x0D) || codePoint == 0x85 || codePoint == 0x2028 ||
           codePoint == 0x2029;
}

/// Characters that reorder the text around them and could make a line read as another.
bool turnsWriting(UChar32 codePoint) {
    return codePoint == 0x061C || codePoint == 0x200E || codePoint == 0x200F ||
           (codePoint >= 0x202A && codePoint <= 0x202E) ||
           (codePoint >= 0x2066 && codePoint <= 0x2069);
}

bool isPlainASCII(std::string_view text) {
    return std::ranges::all_of(
        text, [](char character) { return character >= 0x20 && character < 0x7F; });
}

/// A walk over the grapheme clusters of a text.
class GraphemeClusters {
public:
    explicit GraphemeClusters(std::string_view text) {
        UErrorCode status = U_ZERO_ERROR;
        text_ = utext_openUTF8(nullptr, text.data(), icuLength(text), &status);
        iterator_.reset(
            icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
        if (U_SUCCESS(status)) {
            iterator_->setText(text_, status);
        }
        if (U_FAILURE(status)) {
            iterator_.reset();
        }
    }
    ~GraphemeClusters() { utext_close(text_); }
    GraphemeClusters(const GraphemeClusters&) = delete;
    GraphemeClusters& operator=(const GraphemeClusters&) = delete;

    /// Where cluster `count` ends, from the start or (negative) from the end; absent when the text
    /// has no more than that many.
    std::optional<std::size_t> boundary(std::int32_t count) {
        if (!iterator_) {
            return std::nullopt;
        }
        count < 0 ? iterator_->last() : iterator_->first();
        const std::int32_t place = iterator_->next(count);
        return place == icu::BreakIterator::DONE ? std::nullopt
                                                 : std::optional(static_cast<std::size_t>(place));
    }

private:
    UText* text_ = nullptr;
    std::unique_ptr<icu::BreakIterator> iterator_;
};

} // namespace

std::string stripANSI(std::string_view text) {
    static const std::array patterns{
        Pattern(R"(\x1B\][^\x07]*(?:\x07|\x1B\\))"),
        Pattern(R"(\x1B\[[0-9;?<>]*[ -/]*[@-~])"),
        Pattern(R"(\x1B[()][A-Z0-9])"),
    };
    if (text.find('\x1B') == std::string_view::npos) {
        return std::string(text);
    }
    std::string result;
    for (const Pattern& pattern : patterns) {
        result = pattern.replaceAll(text, "").value_or(std::string(text));
        text = result;
    }
    return result;
}

std::vector<std::string_view> nonEmptyLines(std::string_view text) {
    std::vector<std::string_view> lines;
    std::size_t begin = 0;
    const auto addLine = [&](std::size_t end) {
        if (end > begin) {
            lines.push_back(text.substr(begin, end - begin));
        }
    };
    forEachCharacter(text, [&](const ScannedCharacter& character) {
        if (isLineBreak(character.codePoint)) {
            addLine(character.begin);
            begin = character.end;
        }
    });
    addLine(text.size());
    return lines;
}

std::string_view trimmed(std::string_view text) {
    while (!text.empty()) {
        const ScannedCharacter first = characterAt(text, 0);
        if (!u_isUWhiteSpace(first.codePoint)) {
            break;
        }
        text.remove_prefix(first.end);
    }
    while (!text.empty()) {
        const ScannedCharacter last = characterBefore(text, text.size());
        if (!u_isUWhiteSpace(last.codePoint)) {
            break;
        }
        text = text.substr(0, last.begin);
    }
    return text;
}

bool isValidUTF8(std::string_view text) {
    for (std::size_t index = 0; index < text.size();) {
        const ScannedCharacter character = characterAt(text, index);
        if (character.codePoint < 0) {
            return false;
        }
        index = character.end;
    }
    return true;
}

std::string repairedUTF8(std::string_view text) {
    if (isValidUTF8(text)) {
        return std::string(text);
    }
    std::string result;
    forEachCharacter(text, [&](const ScannedCharacter& character) {
        result += character.codePoint < 0
                      ? std::string_view("\xEF\xBF\xBD")
                      : text.substr(character.begin, character.end - character.begin);
    });
    return result;
}

std::string firstCharacters(std::string_view text, std::size_t count) {
    if (count == 0 || text.size() <= count) {
        return std::string(text.substr(0, count));
    }
    if (isPlainASCII(text.substr(0, count + 1))) {
        return std::string(text.substr(0, count));
    }
    const auto end = GraphemeClusters(text).boundary(static_cast<std::int32_t>(count));
    return std::string(text.substr(0, end.value_or(text.size())));
}

std::string lastCharacters(std::string_view text, std::size_t count) {
    if (count == 0 || text.size() <= count) {
        return std::string(count == 0 ? std::string_view() : text);
    }
    if (isPlainASCII(text.substr(text.size() - count))) {
        return std::string(text.substr(text.size() - count));
    }
    const auto begin = GraphemeClusters(text).boundary(-static_cast<std::int32_t>(count));
    return std::string(text.substr(begin.value_or(0)));
}

std::string singleLine(std::string_view text) {
    const std::string plain = stripANSI(repairedUTF8(text));
    std::string result;
    UChar32 previous = 0;
    forEachCharacter(plain, [&](const ScannedCharacter& character) {
        const UChar32 codePoint = character.codePoint;
        const bool endsPair = previous == '\r' && codePoint == '\n';
        previous = codePoint;
        if (isLineBreak(codePoint) || codePoint == '\t') {
            result += endsPair ? "" : " ";
        } else if (u_charType(codePoint) != U_CONTROL_CHAR && !turnsWriting(codePoint)) {
            result.append(plain, character.begin, character.end - character.begin);
        }
    });
    return result;
}

std::string replacedText(std::string_view text, std::string_view what,
                         std::string_view replacement) {
    std::string result;
    result.reserve(text.size());
    for (auto at = text.find(what); at != std::string_view::npos; at = text.find(what)) {
        result.append(text.substr(0, at)).append(replacement);
        text.remove_prefix(at + what.size());
    }
    return result.append(text);
}

std::string lowercased(std::string_view text) {
    std::string result;
    icu::StringByteSink<std::string> sink(&result);
    UErrorCode status = U_ZERO_ERROR;
    icu::CaseMap::utf8ToLower("", 0, {text.data(), icuLength(text)}, sink, nullptr, status);
    return U_SUCCESS(status) ? result : std::string(text);
}

} // namespace vellmark
