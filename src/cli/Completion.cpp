#include "cli/Completion.h"

#include <algorithm>
#include <set>
#include <string_view>
#include <utility>

namespace vellmark {
namespace {

/// What is meant without a command.
constexpr const char* defaultCommand = "usage";

/// The words before the one that is typed, understood as far as that can be.
class TypedLine {
public:
    TypedLine(const ProgramDescription& program, const std::vector<std::string>& typed)
        : program_(program) {
        for (std::size_t index = 0; index + 1 < typed.size(); ++index) {
            take(typed[index]);
        }
    }

    /// Null before a command is named.
    const CommandDescription* command() const { return command_; }
    /// A word stands in the place of the command that is none.
    bool isUnknown() const { return isUnknown_; }
    /// The option whose value comes next; null when there is none.
    const OptionDescription* open() const { return open_; }
    const std::vector<std::string>& arguments() const { return arguments_; }
    bool hasOption(const OptionDescription& option) const {
        return std::ranges::any_of(option.names,
                                   [&](const auto& name) { return given_.contains(name); });
    }
    /// The last value of "--agent".
    const std::optional<std::string>& agent() const { return agent_; }

    const OptionDescription* find(std::string_view name) const {
        for (const OptionDescription* option : options()) {
            if (std::ranges::find(option->names, name) != option->names.end()) {
                return option;
            }
        }
        return nullptr;
    }

    /// The command's own first; without a command those of the default one.
    std::vector<const OptionDescription*> options() const {
        std::vector<const OptionDescription*> all;
        const CommandDescription* command = command_ ? command_ : program_.find(defaultCommand);
        if (command != nullptr) {
            for (const OptionDescription& option : command->options) {
                all.push_back(&option);
            }
        }
        for (const OptionDescription& option : program_.options) {
            if (command == nullptr || command->takes(option)) {
                all.push_back(&option);
            }
        }
        return all;
    }

private:
    void take(const std::string& word) {
        if (open_ != nullptr) {
            setValue(*std::exchange(open_, nullptr), word);
        } else if (word.starts_with("-") && word != "-") {
            takeOption(word);
        } else if (command_ != nullptr) {
            arguments_.push_back(word);
        } else {
            command_ = program_.find(word);
            isUnknown_ = command_ == nullptr;
        }
    }

    void takeOption(const std::string& word) {
        const std::size_t equals = word.find('=');
        const OptionDescription* option = find(word.substr(0, equals));
        if (option == nullptr) {
            return;
        }
        given_.insert(option->names.begin(), option->names.end());
        if (equals != std::string::npos) {
            setValue(*option, word.substr(equals + 1));
        } else if (!option->placeholder.empty()) {
            open_ = option;
        }
    }

    void setValue(const OptionDescription& option, const std::string& value) {
        if (option.names.back() == "--agent") {
            agent_ = value;
        }
    }

    const ProgramDescription& program_;
    const CommandDescription* command_ = nullptr;
    bool isUnknown_ = false;
    const OptionDescription* open_ = nullptr;
    std::vector<std::string> arguments_;
    std::set<std::string, std::less<>> given_;
    std::optional<std::string> agent_;
};

std::vector<Completions::Word> commandsOf(const ProgramDescription& program) {
    std::vector<Completions::Word> words;
    for (const CommandDescription& command : program.commands) {
        if (!command.isHidden) {
            words.push_back({command.name, command.summary});
        }
    }
    return words;
}

std::vector<Completions::Word> without(std::vector<Completions::Word> words,
                                       const std::vector<std::string>& given) {
    std::erase_if(words, [&](const Completions::Word& word) {
        return std::ranges::find(given, word.word) != given.end();
    });
    return words;
}

/// The values that a placeholder stands for, in the place of the option or argument `name`.
Completions valuesOf(const std::string& placeholder, const std::string& name,
                     const std::vector<std::string>& choices, const TypedLine& line,
                     const ProgramDescription& program, const CompletionSources& sources) {
    using Files = Completions::Files;
    if (!choices.empty()) {
        Completions values;
        for (const std::string& choice : choices) {
            values.words.push_back({choice, {}});
        }
        return values;
    }
    if (name == "--window") {
        return {sources.windows(line.agent()), Files::none};
    }
    if (name == "--agent" || placeholder == "AGENT") {
        return {without(sources.agents(), line.arguments()), Files::none};
    }
    if (placeholder == "KEY") {
        return {sources.settings(), Files::none};
    }
    if (placeholder == "VALUE" && !line.arguments().empty()) {
        return sources.settingValues(line.arguments().front());
    }
    if (placeholder == "COMMAND" && name.empty()) {
        return {commandsOf(program), Files::none};
    }
    if (placeholder == "LANG") {
        return {sources.languages(), Files::none};
    }
    if (placeholder == "WHEN") {
        return {{{"auto", {}}, {"always", {}}, {"never", {}}}, Files::none};
    }
    if (placeholder == "FILE" || placeholder == "PATH") {
        return {{}, Files::all};
    }
    return {{}, placeholder == "DIR" ? Files::directories : Files::none};
}

Completions valuesOf(const OptionDescription& option, const TypedLine& line,
                     const ProgramDescription& program, const CompletionSources& sources) {
    return valuesOf(option.placeholder, option.names.back(), option.choices, line, program,
                    sources);
}

Completions optionsOf(const TypedLine& line) {
    Completions options;
    for (const OptionDescription* option : line.options()) {
        if (option->mayRepeat || !line.hasOption(*option)) {
            for (const std::string& name : option->names) {
                options.words.push_back({name, option->text});
            }
        }
    }
    return options;
}

Completions argumentOf(const TypedLine& line, const ProgramDescription& program,
                       const CompletionSources& sources) {
    if (line.command() == nullptr) {
        return {commandsOf(program), Completions::Files::none};
    }
    const auto& arguments = line.command()->arguments;
    std::size_t place = line.arguments().size();
    if (place >= arguments.size()) {
        if (arguments.empty() || !arguments.back().mayRepeat) {
            return {};
        }
        place = arguments.size() - 1;
    }
    return valuesOf(arguments[place].placeholder, {}, arguments[place].choices, line, program,
                    sources);
}

} // namespace

Completions completionsOf(const ProgramDescription& program, const std::vector<std::string>& typed,
                          const CompletionSources& sources) {
    const TypedLine line(program, typed);
    const std::string current = typed.empty() ? std::string() : typed.back();
    if (line.isUnknown()) {
        return {};
    }
    if (line.open() != nullptr) {
        return valuesOf(*line.open(), line, program, sources);
    }
    if (!current.starts_with("-")) {
        return argumentOf(line, program, sources);
    }
    const std::size_t equals = current.find('=');
    if (equals == std::string::npos) {
        return optionsOf(line);
    }
    const OptionDescription* option = line.find(current.substr(0, equals));
    if (option == nullptr || option->placeholder.empty()) {
        return {};
    }
    Completions values = valuesOf(*option, line, program, sources);
    for (Completions::Word& word : values.words) {
        word.word.insert(0, current.substr(0, equals + 1));
    }
    return values;
}

} // namespace vellmark
