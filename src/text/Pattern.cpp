#include "text/Pattern.h"

#include <re2/re2.h>

#include <array>
#include <cstdint>

namespace vellmark {

namespace {

/// What the automata of one pattern may hold. RE2 stays linear beyond it, only slower.
constexpr std::int64_t memoryLimit = std::int64_t{32} << 20;

/// ICU's meaning of a class escape, as the inside of a bracket expression; `negated` where the
/// escape outside brackets is the complement.
struct ClassEscape {
    char letter;
    std::string_view members;
    bool negated;
};

constexpr std::string_view whiteSpace = R"(\t-\r\x{85}\p{Z})";
constexpr std::string_view wordCharacters = R"(\p{L}\p{M}\p{Nd}\p{Nl}\p{Pc}\x{200C}\x{200D})";
constexpr std::string_view lineBreaks = R"(\n-\r\x{85}\x{2028}\x{2029})";

constexpr std::array classEscapes{
    ClassEscape{'s', whiteSpace, false},     ClassEscape{'S', whiteSpace, true},
    ClassEscape{'d', R"(\p{Nd})", false},    ClassEscape{'D', R"(\p{Nd})", true},
    ClassEscape{'w', wordCharacters, false}, ClassEscape{'W', wordCharacters, true},
};

const ClassEscape* classEscape(char letter) {
    for (const ClassEscape& candidate : classEscapes) {
        if (candidate.letter == letter) {
            return &candidate;
        }
    }
    return nullptr;
}

std::string bracketed(std::string_view members, bool negated) {
    return (negated ? "[^" : "[") + std::string(members) + "]";
}

/// The escape `\letter` with its Unicode meaning.
std::string translatedEscape(char letter, bool insideBrackets) {
    const ClassEscape* escape = classEscape(letter);
    if (escape == nullptr) {
        return {'\\', letter};
    }
    if (!insideBrackets) {
        return bracketed(escape->members, escape->negated);
    }
    if (letter == 'D') {
        return R"(\P{Nd})";
    }
    return escape->negated ? std::string{'\\', letter} : std::string(escape->members);
}

/// RE2's classes are ASCII's and its "." passes all line breaks but one; this spells out the wider
/// classes that the patterns mean.
std::string translated(std::string_view expression) {
    std::string result;
    bool insideBrackets = false;
    for (std::size_t index = 0; index < expression.size(); ++index) {
        const char character = expression[index];
        if (character == '\\' && index + 1 < expression.size()) {
            result += translatedEscape(expression[++index], insideBrackets);
        } else if (character == '.' && !insideBrackets) {
            result += bracketed(lineBreaks, true);
        } else {
            insideBrackets = insideBrackets ? character != ']' : character == '[';
            result += character;
        }
    }
    return result;
}

RE2::Options quietOptions() {
    RE2::Options options;
    options.set_log_errors(false);
    options.set_max_mem(memoryLimit);
    return options;
}

re2::StringPiece piece(std::string_view text) {
    return {text.data(), text.size()};
}

/// The start of the character after the one at `index`.
std::size_t afterCharacter(std::string_view text, std::size_t index) {
    do {
        ++index;
    } while (index < text.size() && (static_cast<unsigned char>(text[index]) & 0xC0U) == 0x80U);
    return index;
}

/// Fills `groups`, of which there is one more than the expression has; empty ones have no data
/// where a group took no part.
bool find(const RE2& expression, const std::array<bool, 256>& isTail, std::string_view text,
          std::size_t from, std::vector<re2::StringPiece>& groups) {
    groups.resize(static_cast<std::size_t>(expression.NumberOfCapturingGroups()) + 1);
    if (!expression.Match(piece(text), from, text.size(), RE2::UNANCHORED, groups.data(),
                          static_cast<int>(groups.size()))) {
        return false;
    }
    const auto begin = static_cast<std::size_t>(groups[0].data() - text.data());
    std::size_t end = begin + groups[0].size();
    while (end < text.size() && isTail[static_cast<unsigned char>(text[end])]) {
        ++end;
    }
    groups[0] = piece(text.substr(begin, end - begin));
    return true;
}

/// Writes a result and, where that is asked for, what of it is new.
class ReplacementWriter {
public:
    ReplacementWriter(std::string_view searched, std::vector<Pattern::Edit>* edits)
        : searched_(searched), edits_(edits) {}

    void replace(std::size_t begin, const std::vector<re2::StringPiece>& groups,
                 std::string_view replacement) {
        result_.append(searched_.substr(done_, begin - done_));
        done_ = begin;
        newBegin_ = result_.size();
        for (std::size_t index = 0; index < replacement.size(); ++index) {
            const char next = index + 1 < replacement.size() ? replacement[index + 1] : '\0';
            const std::size_t group =
                next >= '0' && next <= '9' ? std::size_t(next - '0') : SIZE_MAX;
            if (replacement[index] == '$' && group < groups.size()) {
                keep(groups[group]);
                ++index;
            } else {
                result_ += replacement[index];
            }
        }
        tell(begin + groups[0].size());
    }

    std::string finish() {
        result_.append(searched_.substr(done_));
        return std::move(result_);
    }

private:
    void keep(const re2::StringPiece& group) {
        if (group.empty()) {
            return;
        }
        const auto begin = static_cast<std::size_t>(group.data() - searched_.data());
        // One that stands before what was kept already counts as new.
        if (begin >= done_) {
            tell(begin);
            done_ = begin + group.size();
            newBegin_ = result_.size() + group.size();
        }
        result_.append(group.data(), group.size());
    }

    /// Everything from what was kept last up to `oldEnd` has gone.
    void tell(std::size_t oldEnd) {
        if (edits_ != nullptr && (oldEnd > done_ || result_.size() > newBegin_)) {
            edits_->push_back({done_, oldEnd, newBegin_, result_.size()});
        }
        done_ = oldEnd;
    }

    std::string_view searched_;
    std::vector<Pattern::Edit>* edits_;
    std::string result_;
    /// How far the searched text is in the result, or replaced.
    std::size_t done_ = 0;
    std::size_t newBegin_ = 0;
};

} // namespace

Pattern::Pattern(std::string_view expression, std::string_view tail)
    : expression_(std::make_unique<RE2>(translated(expression), quietOptions())) {
    for (const char character : tail) {
        isTail_[static_cast<unsigned char>(character)] = true;
    }
}

Pattern::~Pattern() = default;
Pattern::Pattern(Pattern&&) noexcept = default;
Pattern& Pattern::operator=(Pattern&&) noexcept = default;

bool Pattern::isValid() const {
    return expression_->ok();
}

std::optional<Pattern::Match> Pattern::search(std::string_view text, std::size_t from) const {
    if (!isValid() || from > text.size()) {
        return std::nullopt;
    }
    std::vector<re2::StringPiece> found;
    // An empty view without data would look like a group that took no part.
    const std::string_view searched = text.data() == nullptr ? std::string_view("") : text;
    if (!find(*expression_, isTail_, searched, from, found)) {
        return std::nullopt;
    }
    Match match;
    match.position = static_cast<std::size_t>(found[0].data() - searched.data());
    match.groups.reserve(found.size());
    for (const re2::StringPiece& group : found) {
        match.groups.push_back(group.data() == nullptr
                                   ? std::nullopt
                                   : std::optional(std::string_view(group.data(), group.size())));
    }
    return match;
}

bool Pattern::matches(std::string_view text) const {
    return isValid() && RE2::PartialMatch(piece(text), *expression_);
}

std::optional<std::string> Pattern::replaceAll(std::string_view text,
                                               std::string_view replacement) const {
    return replaced(text, replacement, nullptr);
}

std::optional<std::string> Pattern::replaceAll(std::string_view text, std::string_view replacement,
                                               std::vector<Edit>& edits) const {
    return replaced(text, replacement, &edits);
}

std::optional<std::string> Pattern::replaced(std::string_view text, std::string_view replacement,
                                             std::vector<Edit>* edits) const {
    if (!isValid()) {
        return std::nullopt;
    }
    const std::string_view searched = text.data() == nullptr ? std::string_view("") : text;
    ReplacementWriter writer(searched, edits);
    std::vector<re2::StringPiece> groups;
    for (std::size_t from = 0;
         from <= searched.size() && find(*expression_, isTail_, searched, from, groups);) {
        const auto begin = static_cast<std::size_t>(groups[0].data() - searched.data());
        writer.replace(begin, groups, replacement);
        from = groups[0].empty() ? afterCharacter(searched, begin) : begin + groups[0].size();
    }
    return writer.finish();
}

} // namespace vellmark
