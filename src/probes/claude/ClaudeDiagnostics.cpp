#include "probes/claude/ClaudeDiagnostics.h"

#include "platform/WholeFile.h"
#include "text/Pattern.h"
#include "text/Redaction.h"
#include "text/TerminalText.h"

#include <algorithm>
#include <array>
#include <vector>

namespace vellmark {

namespace {

constexpr std::size_t keptCharacters = 12000;
constexpr std::string_view redaction = "<redacted>";

std::optional<std::string_view> accountLabelOf(std::string_view line) {
    static constexpr std::array<std::string_view, 6> labels = {
        "Organization", "Email", "Session ID", "Session name", "cwd", "Login method"};
    const std::string start = lowercased(trimmed(line).substr(0, 64));
    for (const std::string_view label : labels) {
        if (start.starts_with(lowercased(label) + ":")) {
            return label;
        }
    }
    return std::nullopt;
}

std::string withoutAccount(std::string_view line, const std::string& home) {
    static const Pattern email(R"([A-Za-z0-9._%+\-]+@[A-Za-z0-9.\-]+\.[A-Za-z]{2,})");
    if (const auto label = accountLabelOf(line)) {
        return std::string(*label) + ": " + std::string(redaction);
    }
    const std::string result = email.replaceAll(line, redaction).value_or(std::string(redaction));
    // A home of "/" names nobody, and would turn every path into nonsense.
    return home.size() > 1 ? replacedText(result, home, "~") : result;
}

} // namespace

std::string redactedClaudeScreen(std::string_view screenText, const std::filesystem::path& home) {
    // From the end backwards: of a capture of 20 MB only the last screen is kept.
    const std::vector<std::string_view> lines = nonEmptyLines(screenText);
    std::vector<std::string> kept;
    std::size_t bytes = 0;
    // No character that counts is longer than this, unless somebody stacks marks for fun.
    constexpr std::size_t enough = keptCharacters * 16;
    for (auto line = lines.rbegin(); line != lines.rend() && bytes < enough; ++line) {
        kept.push_back(withoutAccount(*line, home.string()));
        bytes += kept.back().size() + 1;
    }
    std::string text;
    text.reserve(bytes);
    for (auto line = kept.rbegin(); line != kept.rend(); ++line) {
        text.append(*line).push_back('\n');
    }
    if (!text.empty()) {
        text.pop_back();
    }
    // Labels, addresses and the home come first, in words of their own; then whatever is a secret
    // anywhere. A text that no rule can be applied to is not kept.
    return lastCharacters(redacted(text, home.string()).value_or(""), keptCharacters);
}

std::optional<std::filesystem::path> writeClaudeDiagnostics(std::string_view screenText,
                                                            const std::filesystem::path& home,
                                                            const std::filesystem::path& directory,
                                                            std::string_view name) {
    std::filesystem::path file = directory / name;
    if (replaceWholeFile(file, redactedClaudeScreen(screenText, home))) {
        return std::nullopt;
    }
    return file;
}

} // namespace vellmark
