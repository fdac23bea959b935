#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vellmark {

/// What Claude's terminal showed in one session, in the order in which it was drawn: the raw
/// capture without control sequences, and its non-empty lines, trimmed.
///
/// A capture that is no UTF-8 counts as empty. Costs a few times the capture's size and time linear
/// in it.
class ClaudeScreen {
public:
    explicit ClaudeScreen(std::string_view capture);
    ClaudeScreen(const ClaudeScreen&) = delete;
    ClaudeScreen& operator=(const ClaudeScreen&) = delete;

    const std::string& text() const { return text_; }
    /// Views into `text`.
    const std::vector<std::string_view>& lines() const { return lines_; }

    /// The last line that the CLI drew, leaving out hints at keys ("Esc to …") and what the script
    /// printed; empty when there is none.
    std::string_view lastLine() const;

private:
    std::string text_;
    std::vector<std::string_view> lines_;
};

/// What the lines that the script itself prints begin with.
inline constexpr std::string_view claudeScriptLinePrefix = "VELLMARK";
inline constexpr std::string_view claudeTimingLinePrefix = "VELLMARK_TIMING";

} // namespace vellmark
