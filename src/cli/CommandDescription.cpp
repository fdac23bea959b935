#include "cli/CommandDescription.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <iterator>

namespace vellmark {
namespace {

bool mayRepeat(const CLI::Option& option) {
    return option.get_multi_option_policy() == CLI::MultiOptionPolicy::TakeAll ||
           option.get_items_expected_max() > 1;
}

} // namespace

std::string OptionDescription::term() const {
    std::string term;
    for (const std::string& name : names) {
        term += (term.empty() ? "" : ", ") + name;
    }
    return placeholder.empty() ? term : term + " " + placeholder;
}

std::string ArgumentDescription::term() const {
    const std::string term = mayRepeat ? placeholder + " …" : placeholder;
    return isRequired ? term : "[" + term + "]";
}

bool CommandDescription::takes(const OptionDescription& option) const {
    return hasDemo || option.names.back() != "--demo";
}

std::string CommandDescription::synopsis() const {
    std::string synopsis;
    for (const ArgumentDescription& argument : arguments) {
        synopsis += " " + argument.term();
    }
    return synopsis;
}

std::vector<OptionDescription>
ProgramDescription::optionsFor(const CommandDescription& command) const {
    std::vector<OptionDescription> taken;
    std::ranges::copy_if(options, std::back_inserter(taken),
                         [&](const OptionDescription& option) { return command.takes(option); });
    return taken;
}

const CommandDescription* ProgramDescription::find(const std::string& command) const {
    const auto found = std::ranges::find(commands, command, &CommandDescription::name);
    return found == commands.end() ? nullptr : &*found;
}

std::vector<OptionDescription> optionsOf(const CLI::App& app) {
    std::vector<OptionDescription> options;
    for (const CLI::Option* option : app.get_options()) {
        // Each parser has the one for help; it is told once, for every command.
        if (option->get_positional() ||
            (app.get_parent() != nullptr && option == app.get_help_ptr())) {
            continue;
        }
        OptionDescription& made = options.emplace_back();
        for (const std::string& name : option->get_snames()) {
            made.names.push_back("-" + name);
        }
        for (const std::string& name : option->get_lnames()) {
            made.names.push_back("--" + name);
        }
        const bool isFlag = option->get_items_expected_max() == 0;
        made.placeholder = isFlag ? std::string() : option->get_type_name();
        made.text = option->get_description();
        made.mayRepeat =
            !isFlag && option->get_multi_option_policy() == CLI::MultiOptionPolicy::TakeAll;
    }
    return options;
}

std::vector<ArgumentDescription> argumentsOf(const CLI::App& app) {
    std::vector<ArgumentDescription> arguments;
    for (const CLI::Option* option : app.get_options()) {
        if (option->get_positional()) {
            arguments.push_back({.placeholder = option->get_single_name(),
                                 .text = option->get_description(),
                                 .isRequired = option->get_required(),
                                 .mayRepeat = mayRepeat(*option),
                                 .choices = {}});
        }
    }
    return arguments;
}

} // namespace vellmark
