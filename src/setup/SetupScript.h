#pragma once

#include "probes/ProviderRegistry.h"
#include "text/Localization.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vellmark {

/// What one setup script does: install an agent's CLI, or log in to it.
struct SetupScriptPlan {
    enum class Kind { install, login };

    Kind kind = Kind::install;
    /// The install command chosen, or the login command as it is shown.
    std::string command;
    std::string toolName;
    /// The executable that was located; the script looks the tool up itself without it.
    std::optional<std::string> toolPath;
    std::vector<std::string> loginArguments;
    std::optional<std::vector<std::string>> loginCheckArguments;

    bool operator==(const SetupScriptPlan&) const = default;

    /// `alternative` takes the Homebrew command.
    static SetupScriptPlan install(const CLISetupInfo& info, bool alternative);
    static SetupScriptPlan login(const CLISetupInfo& info, std::optional<std::string> toolPath);
};

/// What a setup script prints, in the user's language. No text may hold a backslash or begin with
/// a dash: zsh's echo reads both even when they are quoted.
struct SetupScriptTexts {
    std::string title;
    std::string shownCommandLabel;
    std::string doneText;
    std::string failedText;
    std::string downloadFailedText;
    std::string pathHint;
    std::string toolMissingText;

    bool operator==(const SetupScriptTexts&) const = default;

    static SetupScriptTexts localized(const Localization& words);
};

/// The zsh script of `plan`, without a final line feed. Every text and argument is single-quoted,
/// so that none can become a command.
std::string setupScript(const SetupScriptPlan& plan, const SetupScriptTexts& texts);

/// `text` as one word of a shell: 'it'\''s'.
std::string shellQuoted(std::string_view text);

} // namespace vellmark
