#pragma once

#include "cli/CommandDescription.h"
#include "cli/HelpPage.h"
#include "cli/Subcommand.h"
#include "text/Localization.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vellmark {

/// The arguments, understood: what to do, or what to say about them.
struct CommandLine {
    /// The chosen subcommand with its values in place; null when `help` or the version is wanted.
    Subcommand* subcommand = nullptr;
    std::optional<HelpPage> help;
    /// A directory that stands in for the machine.
    std::optional<std::string> sandbox;
    bool demo = false;
    ColorChoice colors = ColorChoice::automatic;
};

/// What was wrong with the arguments, and where to read more, in the user's words.
struct CommandLineFault {
    std::string message;
    std::string hint;
};

/// The language asked for by "--language", before anything else is understood; the help and the
/// messages need it. Absent when none or no valid one is given.
std::optional<std::string> requestedLanguage(const std::vector<std::string>& arguments);

/// The hint that goes with a fault of `subcommand` (of the whole program when it is empty).
std::string helpHint(const std::string& subcommand, const Localization& words);

/// The command line that these subcommands make. They are declared anew and take no more arguments
/// than before.
ProgramDescription describeProgram(const std::vector<std::unique_ptr<Subcommand>>& subcommands,
                                   const Localization& words);

/// Understands `arguments` (without the program's name). Without a subcommand among them it is
/// "usage". Throws CommandLineFault.
CommandLine parseCommandLine(std::vector<std::string> arguments,
                             const std::vector<std::unique_ptr<Subcommand>>& subcommands,
                             const Localization& words);

} // namespace vellmark
