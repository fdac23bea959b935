#include "probes/antigravity/AntigravityWindowName.h"

#include "text/Pattern.h"
#include "text/TerminalText.h"

namespace vellmark {

namespace {

/// The text without what every window's name ends in.
std::string withoutRemaining(std::string_view text) {
    static const Pattern limitRemaining("(?i)limit remaining");
    static const Pattern remaining("(?i)remaining");
    std::string cleaned = limitRemaining.replaceAll(text, "").value_or(std::string(text));
    cleaned = remaining.replaceAll(cleaned, "").value_or(cleaned);
    return std::string(trimmed(cleaned));
}

} // namespace

AntigravityWindowName AntigravityWindowName::of(std::string_view text) {
    static const Pattern fiveHours(R"(\b5[\s-]*h)");
    const std::string lower = lowercased(text);
    if (lower.find("weekly") != std::string::npos) {
        return {"weekly", 7 * 24 * 60};
    }
    if (fiveHours.matches(lower)) {
        return {"5h", 5 * 60};
    }
    if (lower.find("daily") != std::string::npos) {
        return {"daily", 24 * 60};
    }
    if (lower.find("monthly") != std::string::npos) {
        return {"monthly", std::nullopt};
    }
    std::string cleaned = withoutRemaining(text);
    return {cleaned.empty() ? "other" : std::move(cleaned), std::nullopt};
}

} // namespace vellmark
