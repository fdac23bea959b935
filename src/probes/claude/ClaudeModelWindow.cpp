#include "probes/claude/ClaudeModelWindow.h"

#include "text/TerminalText.h"

namespace vellmark {

std::optional<std::string> claudeModelWindowIDFor(std::string_view modelName) {
    const std::string name = lowercased(trimmed(modelName));
    // The page says "Sonnet only" where the query says "Sonnet".
    constexpr std::string_view addition = " only";
    const std::string_view model =
        name.ends_with(addition) ? std::string_view(name).substr(0, name.size() - addition.size())
                                 : name;
    std::string id;
    bool namesSomething = false;
    for (const char character : model) {
        const bool isLetterOrDigit =
            (character >= 'a' && character <= 'z') || (character >= '0' && character <= '9');
        if (isLetterOrDigit || character == '-' || character == ' ') {
            id.push_back(character == ' ' ? '-' : character);
        }
        namesSomething |= isLetterOrDigit;
    }
    return namesSomething ? std::optional(id + "-weekly") : std::nullopt;
}

Seconds claudeRemembersWindow(std::string_view windowID) {
    return windowID.ends_with("-weekly") ? Seconds(3600) : Seconds(0);
}

} // namespace vellmark
