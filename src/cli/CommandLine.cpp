#include "cli/CommandLine.h"

#include "cli/NearestWord.h"
#include "presentation/LanguageManager.h"
#include "text/TerminalText.h"

#include <CLI/CLI.hpp>

#include <algorithm>

namespace vellmark {
namespace {

constexpr const char* defaultSubcommand = "usage";

/// Declares to CLI11, with what the help says.
class ParserOptions final : public CommandOptions {
public:
    ParserOptions(CLI::App& app, const Localization& words) : app_(app), words_(words) {}

    void flag(const std::string& name, bool& place, const std::string& helpKey) override {
        app_.add_flag(name, place, words_.text(helpKey));
    }
    void value(const std::string& name, std::optional<std::string>& place,
               const std::string& placeholder, const std::string& helpKey) override {
        add(name, place, helpKey)
            ->type_name(placeholder)
            ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
    }
    void values(const std::string& name, std::vector<std::string>& places,
                const std::string& placeholder, const std::string& helpKey) override {
        // One value each time, so that a following positional argument is not swallowed.
        app_.add_option(name, places, words_.text(helpKey))
            ->type_name(placeholder)
            ->expected(1)
            ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    }
    void positional(const std::string& placeholder, std::string& place,
                    const std::string& helpKey) override {
        app_.add_option(placeholder, place, words_.text(helpKey))->required();
    }
    void optionalPositional(const std::string& placeholder, std::optional<std::string>& place,
                            const std::string& helpKey) override {
        add(placeholder, place, helpKey);
    }
    void optionalPositionals(const std::string& placeholder, std::vector<std::string>& places,
                             const std::string& helpKey) override {
        app_.add_option(placeholder, places, words_.text(helpKey));
    }

private:
    CLI::Option* add(const std::string& name, std::optional<std::string>& place,
                     const std::string& helpKey) {
        return app_.add_option_function<std::string>(
            name, [&place](const std::string& text) { place = text; }, words_.text(helpKey));
    }

    CLI::App& app_;
    const Localization& words_;
};

constexpr const char* helpSubcommand = "help";

bool isSubcommand(const std::string& name,
                  const std::vector<std::unique_ptr<Subcommand>>& subcommands) {
    return name == helpSubcommand || std::ranges::any_of(subcommands, [&](const auto& subcommand) {
               return subcommand->name() == name;
           });
}

/// True when no argument names a subcommand, so that the default one is meant. The values of the
/// global options are not looked at.
bool meansDefault(const std::vector<std::string>& arguments,
                  const std::vector<std::unique_ptr<Subcommand>>& subcommands) {
    for (std::size_t index = 0; index < arguments.size(); ++index) {
        const std::string& argument = arguments[index];
        if (argument == "--language" || argument == "--sandbox" || argument == "--color") {
            ++index;
        } else if (argument == "-h" || argument == "--help" || argument == "-V" ||
                   argument == "--version" || isSubcommand(argument, subcommands)) {
            return false;
        }
    }
    return true;
}

struct Parser {
    CLI::App app{"", "vellmark"};
    const Localization& words;
    const std::vector<std::unique_ptr<Subcommand>>& subcommands;
    std::optional<std::string> helpTopic;
    std::optional<std::string> language;
    std::optional<std::string> color;
    std::optional<std::string> sandbox;
    bool demo = false;

    /// With `arguments`, only the options of the commands that stand among them are declared, which
    /// is enough to understand them; otherwise all are.
    Parser(const std::vector<std::unique_ptr<Subcommand>>& all, const Localization& theWords,
           const std::vector<std::string>* arguments = nullptr)
        : words(theWords), subcommands(all) {
        app.set_help_flag("-h,--help", words.text("cli.help.help"));
        app.set_version_flag("-V,--version", "")->description(words.text("cli.help.version"));
        ParserOptions global(app, words);
        global.value("--language", language, "LANG", "cli.help.language");
        global.value("--color", color, "WHEN", "cli.help.color");
        global.flag("--demo", demo, "cli.help.demo");
        global.value("--sandbox", sandbox, "DIR", "cli.help.sandbox");
        app.require_subcommand(1);
        app.fallthrough();
        for (const auto& subcommand : all) {
            ParserOptions options(*app.add_subcommand(subcommand->name()), words);
            if (!arguments || std::ranges::count(*arguments, subcommand->name()) > 0) {
                subcommand->declare(options);
            }
        }
        ParserOptions(*app.add_subcommand(helpSubcommand), words)
            .optionalPositional("COMMAND", helpTopic, "cli.help.command");
    }

    std::string chosen() const {
        const auto parsed = app.get_subcommands();
        return parsed.empty() ? std::string() : parsed.front()->get_name();
    }

    Subcommand* find(const std::string& name) const {
        const auto found =
            std::ranges::find_if(subcommands, [&](const auto& one) { return one->name() == name; });
        return found == subcommands.end() ? nullptr : found->get();
    }

    ProgramDescription description() const {
        ProgramDescription program{.summary = words.text("cli.help.description"),
                                   .detail = words.text("cli.help.footer"),
                                   .options = optionsOf(app),
                                   .commands = {}};
        for (const auto& subcommand : subcommands) {
            const std::string detailKey = subcommand->detailKey();
            const CLI::App& declared = *app.get_subcommand(subcommand->name());
            CommandDescription command{.name = subcommand->name(),
                                       .summary = words.text(subcommand->summaryKey()),
                                       .detail = detailKey.empty() ? std::string()
                                                                   : words.text(detailKey),
                                       .arguments = argumentsOf(declared),
                                       .options = optionsOf(declared),
                                       .isHidden = subcommand->isHidden(),
                                       .hasDemo = subcommand->hasDemo()};
            for (OptionDescription& option : command.options) {
                option.choices = subcommand->choices(option.names.back());
            }
            for (ArgumentDescription& argument : command.arguments) {
                argument.choices = subcommand->choices(argument.placeholder);
            }
            program.commands.push_back(std::move(command));
        }
        program.commands.push_back({.name = helpSubcommand,
                                    .summary = words.text("cli.help.summary"),
                                    .detail = {},
                                    .arguments = argumentsOf(*app.get_subcommand(helpSubcommand)),
                                    .options = {},
                                    .isHidden = false,
                                    .hasDemo = false});
        return program;
    }

    HelpPage help() const {
        const ProgramDescription program = description();
        HelpPage page{.summary = program.summary,
                      .usage = usage(words.text("cli.help.label.options") + "] [" +
                                     words.text("cli.help.label.command") + " [" +
                                     words.text("cli.help.label.arguments") + "]"),
                      .sections = {},
                      .detail = program.detail};
        HelpPage::Section commands{words.text("cli.help.group.subcommands"), {}};
        for (const CommandDescription& command : program.commands) {
            if (!command.isHidden) {
                commands.entries.push_back({command.name, command.summary});
            }
        }
        page.sections = {std::move(commands),
                         {words.text("cli.help.group.options"), entriesOf(program.options)}};
        return page;
    }

    HelpPage help(const std::string& name) const {
        const ProgramDescription program = description();
        const CommandDescription& command = *program.find(name);
        HelpPage::Section arguments{words.text("cli.help.group.arguments"), {}};
        for (const ArgumentDescription& argument : command.arguments) {
            arguments.entries.push_back({argument.placeholder, argument.text});
        }
        return {.summary = command.summary,
                .usage = usage(words.text("cli.help.label.options"), " " + command.name,
                               command.synopsis()),
                .sections = {std::move(arguments),
                             {words.text("cli.help.group.options"), entriesOf(command.options)},
                             {words.text("cli.help.group.global"),
                              entriesOf(program.optionsFor(command))}},
                .detail = command.detail};
    }

private:
    static std::vector<HelpPage::Entry> entriesOf(const std::vector<OptionDescription>& options) {
        std::vector<HelpPage::Entry> entries;
        for (const OptionDescription& option : options) {
            entries.push_back({option.term(), option.text});
        }
        return entries;
    }

    std::string usage(const std::string& options, const std::string& name = {},
                      const std::string& synopsis = {}) const {
        return words.format("cli.help.label.usage",
                            {"vellmark" + name + " [" + options + "]" + synopsis});
    }
};

/// The option or argument that a message of the parser begins with.
std::string subject(const std::string& message, std::string_view separator) {
    return singleLine(message.substr(0, message.find(separator)));
}

/// The first of `arguments` that the parser could not place.
std::string firstUnplaced(const std::vector<std::string>& arguments, const CLI::App& app) {
    const std::vector<std::string> unplaced = app.remaining(true);
    const auto found = std::ranges::find_first_of(arguments, unplaced);
    return found == arguments.end() ? std::string() : singleLine(*found);
}

/// `key`, or `key`.near with the one of `known` that may have been meant.
std::string unknownText(const std::string& key, const std::string& typed,
                        const std::vector<std::string>& known, const Localization& words) {
    const std::string near = nearestWord(typed, known);
    return near.empty() ? words.format(key, {typed}) : words.format(key + ".near", {typed, near});
}

std::vector<std::string> subcommandNames(const Parser& parser) {
    std::vector<std::string> names{helpSubcommand};
    for (const auto& subcommand : parser.subcommands) {
        if (!subcommand->isHidden()) {
            names.push_back(subcommand->name());
        }
    }
    return names;
}

/// The options that the chosen subcommand takes, "--help" and not "-h".
std::vector<std::string> optionNames(const Parser& parser) {
    std::vector<OptionDescription> options = optionsOf(parser.app);
    if (const std::string chosen = parser.chosen(); !chosen.empty()) {
        const auto own = optionsOf(*parser.app.get_subcommand(chosen));
        options.insert(options.end(), own.begin(), own.end());
    }
    std::vector<std::string> names;
    for (const OptionDescription& option : options) {
        names.push_back(option.names.back());
    }
    return names;
}

/// `isDefault`: no subcommand was named.
CommandLineFault unplacedFault(const std::string& unplaced, bool isDefault, const Parser& parser) {
    const Localization& words = parser.words;
    if (unplaced.starts_with("-")) {
        return {unknownText("cli.error.unexpected", unplaced.substr(0, unplaced.find('=')),
                            optionNames(parser), words),
                helpHint(parser.chosen(), words)};
    }
    if (isDefault) {
        return {unknownText("cli.error.unknownCommand", unplaced, subcommandNames(parser), words),
                helpHint({}, words)};
    }
    return {words.format("cli.error.unexpected", {unplaced}), helpHint(parser.chosen(), words)};
}

CommandLineFault faultOf(const CLI::ParseError& error, const std::vector<std::string>& arguments,
                         bool isDefault, const Parser& parser) {
    const Localization& words = parser.words;
    const std::string message = error.what();
    if (dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr) {
        return unplacedFault(firstUnplaced(arguments, parser.app), isDefault, parser);
    }
    const std::string hint = helpHint(parser.chosen(), words);
    if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr) {
        return {words.format("cli.error.valueMissing", {subject(message, ":")}), hint};
    }
    if (dynamic_cast<const CLI::RequiredError*>(&error) != nullptr) {
        return {words.format("cli.error.argumentMissing", {subject(message, " is required")}),
                hint};
    }
    return {words.format("cli.error.invalid", {singleLine(message)}), hint};
}

/// "--name=" with nothing behind it, for which the parser would take the next word.
void checkValues(const std::vector<std::string>& arguments, const Localization& words) {
    for (const std::string& argument : arguments) {
        if (argument == "--") {
            return;
        }
        if (argument.starts_with("--") && argument.find('=') == argument.size() - 1) {
            throw CommandLineFault{words.format("cli.error.valueMissing", {singleLine(argument)}),
                                   helpHint({}, words)};
        }
    }
}

HelpPage helpAbout(const std::string& topic, const Parser& parser) {
    if (parser.find(topic) != nullptr) {
        return Parser(parser.subcommands, parser.words).help(topic);
    }
    if (topic.empty() || topic == helpSubcommand) {
        return Parser(parser.subcommands, parser.words).help();
    }
    throw CommandLineFault{unknownText("cli.error.unknownCommand", singleLine(topic),
                                       subcommandNames(parser), parser.words),
                           helpHint({}, parser.words)};
}

ColorChoice colorChoice(const Parser& parser) {
    const std::string choice = parser.color.value_or("auto");
    if (choice == "always") {
        return ColorChoice::always;
    }
    if (choice == "never") {
        return ColorChoice::never;
    }
    if (choice == "auto") {
        return ColorChoice::automatic;
    }
    throw CommandLineFault{parser.words.format("cli.error.unknownColor", {singleLine(choice)}),
                           helpHint({}, parser.words)};
}

/// The global options that make no sense.
void checkGlobalOptions(const Parser& parser, const Subcommand* subcommand) {
    const Localization& words = parser.words;
    const auto refuse = [&](const std::string& message) {
        throw CommandLineFault{message, helpHint({}, words)};
    };
    if (parser.language && !Localization::hasLanguage(*parser.language)) {
        refuse(
            words.format("cli.error.language", {singleLine(*parser.language), languageList(", ")}));
    }
    if (parser.sandbox && parser.sandbox->empty()) {
        refuse(words.format("cli.error.valueMissing", {"--sandbox"}));
    }
    if (parser.demo && parser.sandbox) {
        refuse(words.format("cli.error.noEffect", {"--sandbox", "--demo"}));
    }
    if (parser.demo && subcommand != nullptr && !subcommand->hasDemo()) {
        refuse(words.format("cli.error.noEffect", {"--demo", subcommand->name()}));
    }
}

} // namespace

ProgramDescription describeProgram(const std::vector<std::unique_ptr<Subcommand>>& subcommands,
                                   const Localization& words) {
    return Parser(subcommands, words).description();
}

std::optional<std::string> requestedLanguage(const std::vector<std::string>& arguments) {
    const std::string prefix = "--language=";
    std::optional<std::string> language;
    for (std::size_t index = 0; index < arguments.size(); ++index) {
        if (arguments[index].starts_with(prefix)) {
            language = arguments[index].substr(prefix.size());
        } else if (arguments[index] == "--language" && index + 1 < arguments.size()) {
            language = arguments[++index];
        }
    }
    return language && Localization::hasLanguage(*language) ? language : std::nullopt;
}

std::string helpHint(const std::string& subcommand, const Localization& words) {
    const std::string program = subcommand.empty() ? "vellmark" : "vellmark " + subcommand;
    return words.format("cli.error.hint", {program + " --help"});
}

CommandLine parseCommandLine(std::vector<std::string> arguments,
                             const std::vector<std::unique_ptr<Subcommand>>& subcommands,
                             const Localization& words) {
    checkValues(arguments, words);
    const bool isDefault = meansDefault(arguments, subcommands);
    if (isDefault) {
        arguments.insert(arguments.begin(), defaultSubcommand);
    }
    Parser parser(subcommands, words, &arguments);
    try {
        std::vector<std::string> reversed(arguments.rbegin(), arguments.rend());
        parser.app.parse(std::move(reversed));
    } catch (const CLI::CallForVersion&) {
        return {};
    } catch (const CLI::CallForHelp&) {
        return {.help = helpAbout(parser.chosen(), parser)};
    } catch (const CLI::ParseError& error) {
        throw faultOf(error, arguments, isDefault, parser);
    }
    Subcommand* const chosen = parser.find(parser.chosen());
    checkGlobalOptions(parser, chosen);
    const ColorChoice colors = colorChoice(parser);
    if (chosen == nullptr) {
        return {.help = helpAbout(parser.helpTopic.value_or(""), parser)};
    }
    return {.subcommand = chosen,
            .help = {},
            .sandbox = parser.sandbox,
            .demo = parser.demo,
            .colors = colors};
}

} // namespace vellmark
