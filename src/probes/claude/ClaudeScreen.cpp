#include "probes/claude/ClaudeScreen.h"

#include "text/TerminalLayout.h"
#include "text/TerminalText.h"

#include <algorithm>

namespace vellmark {

namespace {

/// A capture, split by who wrote it. The script does not know where the CLI left the cursor.
struct CaptureParts {
    std::string drawn;
    std::string scriptLines;
};

CaptureParts partsOf(std::string_view capture) {
    CaptureParts parts;
    while (!capture.empty()) {
        const std::size_t length = std::min(capture.find('\n'), capture.size() - 1) + 1;
        const std::string_view line = capture.substr(0, length);
        if (line.starts_with(claudeScriptLinePrefix)) {
            // The script begins a line of its own first; the CLI's end with CR LF.
            if (parts.drawn.ends_with('\n') && !parts.drawn.ends_with("\r\n")) {
                parts.drawn.pop_back();
            }
            parts.scriptLines.append("\n").append(trimmed(line));
        } else {
            parts.drawn += line;
        }
        capture.remove_prefix(length);
    }
    return parts;
}

std::string shownText(std::string_view capture, const std::string& drawn) {
    if (!movesCursor(capture)) {
        return drawn;
    }
    CaptureParts parts = partsOf(capture);
    return laidOutText(parts.drawn) + parts.scriptLines;
}

} // namespace

ClaudeScreen::ClaudeScreen(std::string_view capture)
    : drawn_(isValidUTF8(capture) ? drawnText(capture) : std::string()),
      text_(drawn_.empty() ? std::string() : shownText(capture, drawn_)),
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
