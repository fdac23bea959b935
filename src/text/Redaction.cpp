#include "text/Redaction.h"

#include "text/Pattern.h"
#include "text/TerminalText.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <utility>

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

constexpr std::string_view keyWords = "token|bearer|api[_-]?key|secret|password|passwort";

const Rule& namedSecrets() {
    static const Rule rule{Pattern(R"((?i)(^|\W)()" + std::string(keyWords) +
                                   R"()(?:\s*[:=]\s*|\s+)[A-Za-z0-9._\-+/=]{16,})"),
                           "$1$2 <redacted>"};
    return rule;
}

/// A key word at the very end, whose value may follow: all that can go on over a line break.
const Pattern& openSecret() {
    static const Pattern pattern("(?i)(?:" + std::string(keyWords) + R"()\s*[:=]?\s*$)");
    return pattern;
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

/// What a line about a failure must not carry besides, in the order in which it is taken out.
const std::array<Rule, 4>& failureRules() {
    static const std::array rules{
        Rule{Pattern(R"(([A-Za-z][A-Za-z0-9+.\-]*://)[^/?#\s@]*@)"), "$1"},
        Rule{Pattern(R"((://[^\s?#"'<>]*)[?#][^\s"'<>]*)"), "$1"},
        Rule{Pattern(
                 R"rule((?i)("[a-z0-9_\-]*(?:token|secret|key|password|authorization|cookie))rule"
                 R"rule([a-z0-9_\-]*"\s*:\s*)"[^"]*("|$))rule"),
             "$1\"<redacted>\""},
        Rule{Pattern(R"([A-Za-z0-9_\-+=]{40,})"), "<redacted>"},
    };
    return rules;
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
    // Also by the home directory, so that each line is treated as the whole text would be.
    if (isValidUTF8(text) && isValidUTF8(homeDirectory)) {
        return redactedCharacters(std::string(text), homeDirectory, includeEmails);
    }
    auto result =
        redactedCharacters(carryingBytes(text), carryingBytes(homeDirectory), includeEmails);
    return result ? std::optional(carriedBytes(*result)) : std::nullopt;
}

std::string redactedLine(std::string_view words, std::string_view homeDirectory) {
    constexpr std::size_t mostCharacters = 300;
    // Terminal sequences go first: nothing may hide in them what the rules look for.
    std::optional<std::string> line = singleLine(trimmed(words));
    for (const Rule& rule : failureRules()) {
        line = applied(rule, std::move(line));
    }
    if (line) {
        line = redacted(*line, homeDirectory, false);
    }
    if (!line) {
        return {};
    }
    std::string beginning = firstCharacters(*line, mostCharacters);
    return beginning.size() < line->size() ? beginning + "…" : beginning;
}

std::size_t redactionBoundary(std::string_view text, std::string_view homeDirectory) {
    std::size_t end = openSecret().isValid() ? text.size() : 0;
    while (end > 0) {
        const std::string_view part = text.substr(0, end);
        std::size_t open = end;
        if (const auto match = openSecret().search(part)) {
            open = match->position;
        }
        // A directory's name may hold line breaks.
        for (std::size_t length = homeDirectory.find('\n'); length != std::string_view::npos;
             length = homeDirectory.find('\n', length + 1)) {
            if (part.ends_with(homeDirectory.substr(0, length + 1))) {
                open = std::min(open, end - length - 1);
            }
        }
        if (open == end) {
            break;
        }
        const std::size_t previous = text.substr(0, open).rfind('\n');
        end = previous == std::string_view::npos ? 0 : previous + 1;
    }
    return end;
}

} // namespace vellmark
