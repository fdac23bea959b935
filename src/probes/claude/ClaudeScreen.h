#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vellmark {

/// What Claude's terminal shows after one session: the raw capture laid out as a terminal would,
/// and its non-empty lines, trimmed. The CLI redraws its pages from the first line that changed, by
/// moving back over the lines, so in the raw order old figures stand next to new ones. The lines
/// that the script printed between the CLI's come last.
///
/// A capture that is not UTF-8 counts as empty. Takes a few times the capture's size, and time
/// linear in it.
class ClaudeScreen {
public:
    explicit ClaudeScreen(std::string_view capture);
    ClaudeScreen(const ClaudeScreen&) = delete;
    ClaudeScreen& operator=(const ClaudeScreen&) = delete;

    const std::string& text() const { return text_; }
    /// Views into `text`.
    const std::vector<std::string_view>& lines() const { return lines_; }

    /// All that was drawn, in the order in which it came, without control sequences: also what has
    /// been erased since.
    const std::string& drawn() const { return drawn_; }

    /// The last line that the CLI drew, leaving out hints at keys ("Esc to …") and what the script
    /// printed; empty when there is none.
    std::string_view lastLine() const;

private:
    std::string drawn_;
    std::string text_;
    std::vector<std::string_view> lines_;
};

/// What the lines that the script itself prints begin with.
inline constexpr std::string_view claudeScriptLinePrefix = "VELLMARK";
inline constexpr std::string_view claudeTimingLinePrefix = "VELLMARK_TIMING";

} // namespace vellmark
