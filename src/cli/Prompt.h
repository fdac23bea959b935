#pragma once

#include <optional>
#include <string>

namespace vellmark {

struct CommandContext;

/// Asks the user for one line on the terminal.
class Prompt {
public:
    explicit Prompt(const CommandContext& context) : context_(context) {}

    /// The line without its end; absent when the user leaves (Ctrl-D, Ctrl-C or another signal that
    /// ends the program).
    std::optional<std::string> ask(const std::string& question);

    /// 128 + the signal that ended the last question; 0 when none did.
    int endingStatus() const { return endingStatus_; }

private:
    const CommandContext& context_;
    int endingStatus_ = 0;
};

} // namespace vellmark
