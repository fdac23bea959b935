#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace vellmark {

/// An option as it was declared to the argument parser.
struct OptionDescription {
    /// Short ones first: "-o", "--output".
    std::vector<std::string> names;
    /// Stands for the value ("FILE"); empty for a flag.
    std::string placeholder;
    std::string text;
    bool mayRepeat = false;
    /// All that the value may be; empty where that is not a matter of a few words.
    std::vector<std::string> choices;

    /// "-o, --output FILE".
    std::string term() const;
};

/// A positional argument.
struct ArgumentDescription {
    std::string placeholder;
    std::string text;
    bool isRequired = false;
    bool mayRepeat = false;
    std::vector<std::string> choices;

    /// "AGENT", "[FILE]", "[AGENT …]".
    std::string term() const;
};

struct CommandDescription {
    std::string name;
    std::string summary;
    /// More about it; may be empty.
    std::string detail;
    std::vector<ArgumentDescription> arguments;
    std::vector<OptionDescription> options;
    /// Nobody types it: not in the help.
    bool isHidden = false;
    /// Takes "--demo".
    bool hasDemo = true;

    /// Whether one of the options for every command has an effect here.
    bool takes(const OptionDescription& option) const;
    /// " TASK [FILE]".
    std::string synopsis() const;
};

/// The whole command line in the user's words: help, manual pages and completions are made of it.
struct ProgramDescription {
    std::string summary;
    std::string detail;
    /// For every command.
    std::vector<OptionDescription> options;
    /// In the order of the help.
    std::vector<CommandDescription> commands;

    /// The options for every command, as far as this one takes them.
    std::vector<OptionDescription> optionsFor(const CommandDescription& command) const;
    /// Null when there is no such command. Valid as long as the description.
    const CommandDescription* find(const std::string& command) const;
};

/// What the parser knows of its options.
std::vector<OptionDescription> optionsOf(const CLI::App& app);
/// What it knows of its positional arguments.
std::vector<ArgumentDescription> argumentsOf(const CLI::App& app);

} // namespace vellmark
