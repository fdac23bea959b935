#pragma once

#include <optional>
#include <string>
#include <vector>

namespace vellmark {

/// What is known about installing an agent's CLI and logging in to it.
struct CLISetupInfo {
    /// The vendor's documented install command (a download piped into a shell).
    std::string installCommand;
    /// The Homebrew alternative.
    std::string installAlternative;
    /// The command that a user types to log in.
    std::string loginCommand;
    std::string installDocsURL;
    std::string loginDocsURL;
    /// The executable's name on PATH.
    std::string toolName;
    /// Arguments that start the login.
    std::vector<std::string> loginArguments;
    /// Arguments whose success shows that the login subcommand exists.
    std::optional<std::vector<std::string>> loginCheckArguments;

    bool operator==(const CLISetupInfo&) const = default;
};

} // namespace vellmark
