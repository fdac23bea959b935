#pragma once

#include "platform/Machine.h"

#include <filesystem>
#include <optional>
#include <string>

namespace vellmark {

/// Runs a setup script with zsh in the user's terminal, where he watches it and answers its
/// prompts.
///
/// The child gets a process group of its own, which is the terminal's foreground group until it
/// ends, so that Ctrl-C reaches the script and not this program. Afterwards the foreground and the
/// terminal's settings are what they were, whatever the script did. The child is in the registry of
/// running children while it lives.
class TerminalScript {
public:
    /// `terminal` is the descriptor of the controlling terminal and the script's input and output.
    TerminalScript(const Machine& machine, int terminal) : machine_(machine), terminal_(terminal) {}

    /// Where the shell is; absent on a machine without it.
    static std::optional<std::filesystem::path> shell();

    /// Blocks until the script has ended and returns its exit status, 128 and the signal's number
    /// when a signal ended it. Throws std::system_error when it cannot be started.
    int run(const std::string& script) const;

private:
    const Machine& machine_;
    int terminal_;
};

} // namespace vellmark
