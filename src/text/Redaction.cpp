#include "text/Redaction.h"

#include "text/Pattern.h"
#include "text/TerminalText.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace vellmark {
namespace {

/// One rule: every match of the pattern becomes the replacement.
struct Rule {
    Pattern pattern;
    std::string_view replacement;
};

// A key word begins where no word character of any script stands before it: "Übertoken" only ends
// like one. Pattern's \b knows ASCII's words alone, so the character before is matched with it.
// Marks belong to the character that they follow: those of an emoji make no word, those of a letter
// do.
constexpr std::string_view wordStart = R"((^\p{M}*|\W\p{M}*))";

Pattern atWordStart(std::string_view expression, std::string_view flags = {}) {
    return Pattern(std::string(flags) + std::string(wordStart) + std::string(expression));
}

const Rule& userPaths() {
    static const Rule rule{Pattern(R"(/Users/[^/\s"'«»“”)\]]+)"), "~"};
    return rule;
}

constexpr std::string_view keyWords = "token|bearer|api[_-]?key|secret|password|passwort";

const Rule& namedSecrets() {
    static const Rule rule{
        atWordStart("(" + std::string(keyWords) + R"()(?:\s*[:=]\s*|\s+)[A-Za-z0-9._\-+/=]{16,})",
                    "(?i)"),
        "$1$2 <redacted>"};
    return rule;
}

/// A key word at the very end, whose value may follow: all that can go on over a line break.
const Pattern& openSecret() {
    static const Pattern pattern("(?i)(?:" + std::string(keyWords) + R"()\s*[:=]?\s*$)");
    return pattern;
}

const Rule& prefixedKeys() {
    static const Rule rule{atWordStart(R"((?:sk|ghp|gho|xox[bap])-[A-Za-z0-9_\-]{12,})"),
                           "$1<redacted>"};
    return rule;
}

const Rule& emailAddresses() {
    static const Rule rule{Pattern(R"([A-Za-z0-9._%+\-]+@[A-Za-z0-9.\-]+\.[A-Za-z]{2,})"), "…@…"};
    return rule;
}

/// The start of a private key's block, and what its lines are made of.
std::string privateKeyStart() {
    return R"(-----BEGIN [A-Z0-9 ]*PRIVATE KEY[A-Z0-9 ]*-----[A-Za-z0-9+/=\s\\:,\-])";
}

const Pattern& openPrivateKey() {
    static const Pattern pattern(privateKeyStart() + "*$");
    return pattern;
}

/// What is removed beyond the five rules, in this order. A replacement holds nothing that a rule
/// takes for a secret again.
const std::vector<Rule>& furtherRules() {
    static const std::vector<Rule> rules = [] {
        std::vector<Rule> made;
        const auto add = [&made](Pattern pattern, std::string_view replacement) {
            made.push_back({std::move(pattern), replacement});
        };
        // All but this one stay within a line, so that a text can be redacted as it comes
        // (`redactionBoundary`). A block without an end goes as far as it looks like one.
        add(Pattern(privateKeyStart() +
                    R"(*?(?:-----END [A-Z0-9 ]*-----|$|([^A-Za-z0-9+/=\s\\:,\-])))"),
            "<redacted>$1");
        add(Pattern(R"((?i)((?:proxy-)?authorization["']?[ \t]*[:=][ \t]*["']?)"
                    R"((?:(?:basic|bearer|token|digest|negotiate)[ \t]+)?))"
                    R"((?:<redacted>|[^\s<"',;]+))"),
            "$1<redacted>");
        add(Pattern(R"((?i)((?:set-)?cookie["']?[ \t]*[:=][ \t]*["']?))"
                    R"((?:<redacted>|[^\s<"'][^\r\n"'<]*))"),
            "$1<redacted>");
        add(Pattern(
                R"rule((?i)("[a-z0-9_.\-]*(?:token|secret|key|passwor[dt]|passwd|credential)rule"
                R"rule(|authorization|cookie)[a-z0-9_.\-]*"[ \t]*:[ \t]*))rule"
                R"rule("(?:[^"\\\r\n]|\\[^\r\n])*"?)rule"),
            "$1\"<redacted>\"");
        add(atWordStart(
                R"rule(((?:(?:[a-z0-9_.\-]*[_.\-])?(?:token|secret|passwor[dt]|passwd|pwd))rule"
                R"rule(|credential|signature|sig|[a-z0-9_.\-]*api_?key)rule"
                R"rule(|[a-z0-9_.\-]*[_\-](?:key|auth))=["']?)[^\s<>&"',;]{6,})rule",
                "(?i)"),
            "$1$2<redacted>");
        add(Pattern(
                R"(\b(?:gh[pousr]_[A-Za-z0-9]{20,}|github_pat_[A-Za-z0-9_]{20,})"
                R"(|glpat-[A-Za-z0-9_\-]{16,}|xox[a-z]-[A-Za-z0-9\-]{10,}|xapp-[A-Za-z0-9\-]{10,})"
                R"(|(?:AKIA|ASIA)[A-Z0-9]{16}|AIza[A-Za-z0-9_\-]{30,}|ya29\.[A-Za-z0-9_\-.]{16,})"
                R"(|[1-9][0-9]?//0[A-Za-z0-9_\-]{24,}|[spr]k_(?:live|test)_[A-Za-z0-9]{12,})"
                R"(|npm_[A-Za-z0-9]{24,}|hf_[A-Za-z0-9]{24,}|pypi-[A-Za-z0-9_\-]{24,})"
                R"(|SG\.[A-Za-z0-9_\-]{16,}\.[A-Za-z0-9_\-]{16,}|dop_v1_[a-f0-9]{32,})"
                R"(|eyJ[A-Za-z0-9_\-]{8,}\.[A-Za-z0-9_\-]{8,}(?:\.[A-Za-z0-9_\-]*)?))"),
            "<redacted>");
        add(Pattern(R"(([A-Za-z][A-Za-z0-9+.\-]*://)[^/?#\s@"'<>]+@)"), "$1<redacted>@");
        add(Pattern(R"((^|[\s"'=:(\[{<>«“,;|/])(?:/(?:var|export))?/home/[^/\s"'«»“”)\]:,;]+)"),
            "$1~");
        add(Pattern(R"((?i)\b[a-z]:[\\/]+users[\\/]+[^\\/\s"'«»“”)\]]+)"), "~");
        return made;
    }();
    return rules;
}

/// What a line about a failure must not carry besides.
const std::array<Rule, 2>& urlRules() {
    static const std::array rules{
        Rule{Pattern(R"(([A-Za-z][A-Za-z0-9+.\-]*://)[^/?#\s@<]*@)"), "$1"},
        Rule{Pattern(R"((://[^\s?#"'<>]*)[?#][^\s"'<>]*)"), "$1"},
    };
    return rules;
}

const Rule& opaqueRuns() {
    static const Rule rule{Pattern(R"([A-Za-z0-9_\-+=]{40,})"), "<redacted>"};
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
                                              const RedactionOptions& options) {
    if (characterCount(homeDirectory) >= 2) {
        text = replacedText(text, homeDirectory, "~");
    }
    std::optional<std::string> result = std::move(text);
    result = applied(userPaths(), std::move(result));
    result = applied(namedSecrets(), std::move(result));
    result = applied(prefixedKeys(), std::move(result));
    if (!options.includeEmails) {
        result = applied(emailAddresses(), std::move(result));
    }
    if (!options.strictRules) {
        for (const Rule& rule : furtherRules()) {
            result = applied(rule, std::move(result));
        }
    }
    return result;
}

} // namespace

std::optional<std::string> redacted(std::string_view text, std::string_view homeDirectory,
                                    const RedactionOptions& options) {
    // Also by the home directory, so that each line is treated as the whole text would be.
    if (isValidUTF8(text) && isValidUTF8(homeDirectory)) {
        return redactedCharacters(std::string(text), homeDirectory, options);
    }
    auto result = redactedCharacters(carryingBytes(text), carryingBytes(homeDirectory), options);
    return result ? std::optional(carriedBytes(*result)) : std::nullopt;
}

std::string redactedWords(std::string_view words, std::string_view homeDirectory) {
    // Terminal sequences go first: nothing may hide in them what the rules look for.
    std::optional<std::string> line = singleLine(trimmed(words));
    for (const Rule& rule : urlRules()) {
        line = applied(rule, std::move(line));
    }
    if (line) {
        line = applied(opaqueRuns(), redacted(*line, homeDirectory));
    }
    return line.value_or("");
}

std::string redactedLine(std::string_view words, std::string_view homeDirectory) {
    constexpr std::size_t mostCharacters = 500;
    const std::string line = redactedWords(words, homeDirectory);
    std::string beginning = firstCharacters(line, mostCharacters);
    return beginning.size() < line.size() ? beginning + "…" : beginning;
}

std::size_t redactionBoundary(std::string_view text, std::string_view homeDirectory,
                              const RedactionOptions& options) {
    std::size_t end = openSecret().isValid() && openPrivateKey().isValid() ? text.size() : 0;
    while (end > 0) {
        const std::string_view part = text.substr(0, end);
        std::size_t open = end;
        if (const auto match = openSecret().search(part)) {
            open = match->position;
        }
        if (!options.strictRules) {
            if (const auto match = openPrivateKey().search(part)) {
                open = std::min(open, match->position);
            }
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
