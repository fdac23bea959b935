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
    RemovedKind kind = RemovedKind::key;
};

// A key word begins where no word character of any script stands before it: "Übertoken" only ends
// like one. Pattern's \b knows ASCII's words alone, so the character before is matched with it.
// Marks belong to the character that they follow: those of an emoji make no word, those of a letter
// do.
constexpr std::string_view wordStart = R"((^\p{M}*|\W\p{M}*))";

Pattern atWordStart(std::string_view expression, std::string_view flags = {},
                    std::string_view tail = {}) {
    return Pattern(std::string(flags) + std::string(wordStart) + std::string(expression), tail);
}

constexpr std::string_view lettersAndDigits =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";

const Rule& userPaths() {
    static const Rule rule{Pattern(R"(/Users/[^/\s"'«»“”)\]]+)"), "~", RemovedKind::path};
    return rule;
}

constexpr std::string_view keyWords = "token|bearer|api[_-]?key|secret|password|passwort";

const Rule& namedSecrets() {
    static const Rule rule{
        atWordStart("(" + std::string(keyWords) + R"()(?:\s*[:=]\s*|\s+)[A-Za-z0-9._\-+/=]{16})",
                    "(?i)", std::string(lettersAndDigits) + "._-+/="),
        "$1$2 <redacted>"};
    return rule;
}

/// A key word at the very end, whose value may follow: all that can go on over a line break.
const Pattern& openSecret() {
    static const Pattern pattern("(?i)(?:" + std::string(keyWords) + R"()\s*[:=]?\s*$)");
    return pattern;
}

const Rule& prefixedKeys() {
    static const Rule rule{atWordStart(R"((?:sk|ghp|gho|xox[bap])-[A-Za-z0-9_\-]{12})", {},
                                       std::string(lettersAndDigits) + "_-"),
                           "$1<redacted>"};
    return rule;
}

const Rule& emailAddresses() {
    static const Rule rule{Pattern(R"([A-Za-z0-9._%+\-]+@[A-Za-z0-9.\-]+\.[A-Za-z]{2,})"), "…@…",
                           RemovedKind::address};
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
        const auto add = [&made](Pattern pattern, std::string_view replacement,
                                 RemovedKind kind = RemovedKind::key) {
            made.push_back({std::move(pattern), replacement, kind});
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
        add(Pattern(R"(([A-Za-z][A-Za-z0-9+.\-]*://)[^/?#\s"'<>]+@)"), "$1<redacted>@");
        add(Pattern(R"((^|[\s"'=:(\[{<>«“,;|/])(?:/(?:var|export))?/home/[^/\s"'«»“”)\]:,;]+)"),
            "$1~", RemovedKind::path);
        add(Pattern(R"((?i)\b[a-z]:[\\/]+users[\\/]+[^\\/\s"'«»“”)\]]+)"), "~", RemovedKind::path);
        return made;
    }();
    return rules;
}

/// What a line about a failure must not carry besides.
const std::array<Rule, 2>& urlRules() {
    static const std::array rules{
        Rule{Pattern(R"(([A-Za-z][A-Za-z0-9+.\-]*://)[^/?#\s<]*@)"), "$1"},
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

std::string carriedBytes(std::string_view text, std::vector<RemovedPlace>* places) {
    std::string result;
    result.reserve(text.size());
    // A place begins and ends beside a carrier, never in it: beginnings and ends come in turn.
    std::size_t next = 0;
    const auto moveBounds = [&](std::size_t at) {
        for (; places != nullptr && next < 2 * places->size(); ++next) {
            RemovedPlace& place = (*places)[next / 2];
            std::size_t& bound = next % 2 == 0 ? place.begin : place.end;
            if (bound > at) {
                break;
            }
            bound = result.size();
        }
    };
    for (std::size_t i = 0; i < text.size(); ++i) {
        moveBounds(i);
        if (isCarrier(text.substr(i, 4))) {
            const int high = (static_cast<unsigned char>(text[i + 2]) - 0xBC) << 6;
            const int low = static_cast<unsigned char>(text[i + 3]) & 0x3F;
            result += static_cast<char>(high | low);
            i += 3;
        } else {
            result += text[i];
        }
    }
    moveBounds(text.size());
    return result;
}

std::vector<Pattern::Edit> editsOf(std::string_view text, std::string_view what,
                                   std::string_view replacement) {
    std::vector<Pattern::Edit> edits;
    std::size_t written = 0;
    std::size_t read = 0;
    for (auto at = text.find(what); at != std::string_view::npos; at = text.find(what, read)) {
        written += at - read;
        edits.push_back({at, at + what.size(), written, written + replacement.size()});
        written += replacement.size();
        read = at + what.size();
    }
    return edits;
}

/// Where something was removed, while one rule after the other changes the text.
class RemovedPlaces {
public:
    /// `text` is what the edits have led to.
    void take(const std::vector<Pattern::Edit>& edits, RemovedKind kind, std::string_view text) {
        if (edits.empty()) {
            return;
        }
        std::vector<RemovedPlace> result;
        result.reserve(places_.size() + edits.size());
        auto place = places_.cbegin();
        std::size_t oldAt = 0;
        std::size_t newAt = 0;
        const auto moveOn = [&] {
            result.push_back(
                {place->begin - oldAt + newAt, place->end - oldAt + newAt, place->kind});
            ++place;
        };
        for (const Pattern::Edit& edit : edits) {
            while (place != places_.cend() && place->end <= edit.oldBegin) {
                moveOn();
            }
            while (place != places_.cend() && place->begin < edit.oldEnd) {
                ++place;
            }
            const bool hasBlank = edit.newBegin < edit.newEnd && text[edit.newBegin] == ' ';
            const std::size_t begin = edit.newBegin + (hasBlank ? 1 : 0);
            if (begin < edit.newEnd) {
                result.push_back({begin, edit.newEnd, kind});
            }
            oldAt = edit.oldEnd;
            newAt = edit.newEnd;
        }
        while (place != places_.cend()) {
            moveOn();
        }
        places_ = std::move(result);
    }

    std::vector<RemovedPlace> finish() { return std::move(places_); }

private:
    std::vector<RemovedPlace> places_;
};

/// `places` may be null.
std::optional<std::string> applied(const Rule& rule, std::optional<std::string> text,
                                   RemovedPlaces* places = nullptr) {
    if (!text || !rule.pattern.isValid()) {
        return std::nullopt;
    }
    if (places == nullptr) {
        return rule.pattern.replaceAll(*text, rule.replacement);
    }
    std::vector<Pattern::Edit> edits;
    auto result = rule.pattern.replaceAll(*text, rule.replacement, edits);
    if (result) {
        places->take(edits, rule.kind, *result);
    }
    return result;
}

std::optional<std::string> redactedCharacters(std::string text, std::string_view homeDirectory,
                                              const RedactionOptions& options,
                                              RemovedPlaces* places) {
    if (characterCount(homeDirectory) >= 2) {
        constexpr std::string_view home = "~";
        std::string replaced = replacedText(text, homeDirectory, home);
        if (places != nullptr) {
            places->take(editsOf(text, homeDirectory, home), RemovedKind::path, replaced);
        }
        text = std::move(replaced);
    }
    std::optional<std::string> result = std::move(text);
    result = applied(userPaths(), std::move(result), places);
    result = applied(namedSecrets(), std::move(result), places);
    result = applied(prefixedKeys(), std::move(result), places);
    if (!options.includeEmails) {
        result = applied(emailAddresses(), std::move(result), places);
    }
    if (!options.strictRules) {
        for (const Rule& rule : furtherRules()) {
            result = applied(rule, std::move(result), places);
        }
    }
    return result;
}

/// `places`, which may be null, receives where something was removed.
std::optional<std::string> redactedBytes(std::string_view text, std::string_view homeDirectory,
                                         const RedactionOptions& options,
                                         std::vector<RemovedPlace>* places) {
    RemovedPlaces tracked;
    RemovedPlaces* const tracking = places != nullptr ? &tracked : nullptr;
    // Also by the home directory, and where a character looks like a carrier, so that each line is
    // treated as the whole text would be.
    const bool isCarried = !isValidUTF8(text) || !isValidUTF8(homeDirectory) ||
                           text.find(carrierLead) != std::string_view::npos;
    auto result = isCarried
                      ? redactedCharacters(carryingBytes(text), carryingBytes(homeDirectory),
                                           options, tracking)
                      : redactedCharacters(std::string(text), homeDirectory, options, tracking);
    if (places != nullptr) {
        *places = tracked.finish();
    }
    return result && isCarried ? std::optional(carriedBytes(*result, places)) : std::move(result);
}

std::optional<std::string> wordsRedactedOnce(std::string_view words,
                                             std::string_view homeDirectory) {
    // Terminal sequences go first: nothing may hide in them what the rules look for.
    std::optional<std::string> line = singleLine(trimmed(words));
    for (const Rule& rule : urlRules()) {
        line = applied(rule, std::move(line));
    }
    return line ? applied(opaqueRuns(), redacted(*line, homeDirectory)) : std::nullopt;
}

} // namespace

std::optional<std::string> redacted(std::string_view text, std::string_view homeDirectory,
                                    const RedactionOptions& options) {
    return redactedBytes(text, homeDirectory, options, nullptr);
}

std::optional<RedactedText> redactedWithPlaces(std::string_view text,
                                               std::string_view homeDirectory,
                                               const RedactionOptions& options) {
    RedactedText result;
    auto redactedText = redactedBytes(text, homeDirectory, options, &result.places);
    if (!redactedText) {
        return std::nullopt;
    }
    result.text = std::move(*redactedText);
    return result;
}

std::string redactedWords(std::string_view words, std::string_view homeDirectory) {
    // What one rule leaves may be something for another: two passes are usual, more an attempt to
    // smuggle something through.
    constexpr int mostPasses = 8;
    std::string line(words);
    for (int pass = 0; pass < mostPasses; ++pass) {
        auto redactedOnce = wordsRedactedOnce(line, homeDirectory);
        if (!redactedOnce) {
            break;
        }
        if (*redactedOnce == line) {
            return line;
        }
        line = std::move(*redactedOnce);
    }
    return {};
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
