#include "report/Redaction.h"

#include "text/Pattern.h"
#include "text/TerminalText.h"

#include <cstddef>

namespace vellmark {
namespace {

/// One rule: every match of the pattern becomes the replacement.
struct Rule {
    Pattern pattern;
    std::string_view replacement;
};

// A key word begins where no word character of any script stands before it: "Übertoken" only ends
// like one. Pattern's \b knows ASCII's words alone, so the character before is matched with it.

const Rule& userPaths() {
    static const Rule rule{Pattern(R"(/Users/[^/\s"'«»“”)\]]+)"), "~"};
    return rule;
}

const Rule& namedSecrets() {
    static const Rule rule{
        Pattern(R"((?i)(^|\W)(token|bearer|api[_-]?key|secret|password|passwort))"
                R"((?:\s*[:=]\s*|\s+)[A-Za-z0-9._\-+/=]{16,})"),
        "$1$2 <redacted>"};
    return rule;
}

const Rule& prefixedKeys() {
    static const Rule rule{Pattern(R"((^|\W)(?:sk|ghp|gho|xox[bap])-[A-Za-z0-9_\-]{12,})"),
                           "$1<redacted>"};
    return rule;
}

const Rule& emailAddresses() {
    static const Rule rule{Pattern(R"([A-Za-z0-9._%+\-]+@[A-Za-z0-9.\-]+\.[A-Za-z]{2,})"), "…@…"};
    return rule;
}

std::size_t characterCount(std::string_view text) {
    std::size_t count = 0;
    for (const char byte : text) {
        count += (static_cast<unsigned char>(byte) & 0xC0) != 0x80;
    }
    return count;
}

// Bytes that are no UTF-8 are taken through the rules as characters at the end of the last
// private-use plane: patterns then see a character where a byte stands (a user name in Latin-1 is a
// name too), and what is left is turned back into the same bytes.
constexpr std::string_view carrierLead = "\xF4\x8F";

void appendCarried(std::string& result, std::string_view bytes) {
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        result += carrierLead;
        result += static_cast<char>(0xBC + (byte >> 6));
        result += static_cast<char>(0x80 + (byte & 0x3F));
    }
}

bool isCarrier(std::string_view character) {
    return character.size() == 4 && character.starts_with(carrierLead) &&
           static_cast<unsigned char>(character[2]) >= 0xBE;
}

std::size_t lengthByLeadByte(char lead) {
    const auto byte = static_cast<unsigned char>(lead);
    return byte < 0x80 ? 1 : byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : 4;
}

std::string carryingBytes(std::string_view text) {
    std::string result;
    result.reserve(text.size() + text.size() / 4);
    for (std::size_t i = 0; i < text.size();) {
        const auto character = text.substr(i, lengthByLeadByte(text[i]));
        if (!isValidUTF8(character)) {
            appendCarried(result, character.substr(0, 1));
            ++i;
            continue;
        }
        if (isCarrier(character)) {
            appendCarried(result, character); // carried bytewise, or it would be taken for one
        } else {
            result += character;
        }
        i += character.size();
    }
    return result;
}

std::string carriedBytes(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (isCarrier(text.substr(i, 4))) {
            const int high = (static_cast<unsigned char>(text[i + 2]) - 0xBC) << 6;
            const int low = static_cast<unsigned char>(text[i + 3]) & 0x3F;
            result += static_cast<char>(high | low);
            i += 3;
        } else {
            result += text[i];
        }
    }
    return result;
}

std::optional<std::string> applied(const Rule& rule, std::optional<std::string> text) {
    if (!text || !rule.pattern.isValid()) {
        return std::nullopt;
    }
    return rule.pattern.replaceAll(*text, rule.replacement);
}

std::optional<std::string> redactedCharacters(std::string text, std::string_view homeDirectory,
                                              bool includeEmails) {
    if (characterCount(homeDirectory) >= 2) {
        text = replacedText(text, homeDirectory, "~");
    }
    std::optional<std::string> result = std::move(text);
    result = applied(userPaths(), std::move(result));
    result = applied(namedSecrets(), std::move(result));
    result = applied(prefixedKeys(), std::move(result));
    return includeEmails ? result : applied(emailAddresses(), std::move(result));
}

} // namespace

std::optional<std::string> redacted(std::string_view text, std::string_view homeDirectory,
                                    bool includeEmails) {
    if (isValidUTF8(text)) {
        return redactedCharacters(std::string(text), homeDirectory, includeEmails);
    }
    auto result =
        redactedCharacters(carryingBytes(text), carryingBytes(homeDirectory), includeEmails);
    return result ? std::optional(carriedBytes(*result)) : std::nullopt;
}

} // namespace vellmark
