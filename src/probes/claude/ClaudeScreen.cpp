#include "probes/claude/ClaudeScreen.h"

#include "text/TerminalText.h"

#include <algorithm>

namespace vellmark {

ClaudeScreen::ClaudeScreen(std::string_view capture)
    : text_(isValidUTF8(capture) ? stripANSI(capture) : std::string()),
      lines_(nonEmptyLines(text_)) {
    for (std::string_view& line : lines_) {
        line = trimmed(line);
    }
}

std::string_view ClaudeScreen::lastLine() const {
    const auto drawn = [](std::string_view line) {
        return !line.starts_with("Esc to") && !line.starts_with(claudeScriptLinePrefix);
    };
    const auto found = std::find_if(lines_.rbegin(), lines_.rend(), drawn);
    return found == lines_.rend() ? std::string_view() : *found;
}

} // namespace vellmark
