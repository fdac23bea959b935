#include "cli/CommandLine.h"

#include "cli/DisplayWidth.h"
#include "text/TerminalText.h"

#include <CLI/CLI.hpp>

#include <algorithm>

namespace vellmark {
namespace {

constexpr const char* defaultSubcommand = "usage";

bool isLanguage(const std::string& text) {
    return text == "de" || text == "en";
}

/// Declares to CLI11.
class ParserOptions final : public CommandOptions {
public:
    ParserOptions(CLI::App& app, const Localization& words) : app_(app), words_(words) {}

    void flag(const std::string& name, bool& place, const std::string& helpKey) override {
        app_.add_flag(name, place, words_.text(helpKey));
    }
    void value(const std::string& name, std::optional<std::string>& place,
               const std::string& placeholder, const std::string& helpKey) override {
        add(name, place, placeholder, helpKey)
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
        app_.add_option(placeholder, place, words_.text(helpKey))->type_name("")->required();
    }
    void optionalPositional(const std::string& placeholder, std::optional<std::string>& place,
                            const std::string& helpKey) override {
        add(placeholder, place, "", helpKey);
    }

private:
    CLI::Option* add(const std::string& name, std::optional<std::string>& place,
                     const std::string& placeholder, const std::string& helpKey) {
        return app_
            .add_option_function<std::string>(
                name, [&place](const std::string& text) { place = text; }, words_.text(helpKey))
            ->type_name(placeholder);
    }

    CLI::App& app_;
    const Localization& words_;
};

/// True when no argument names a subcommand, so that the default one is meant. The values of the
/// global options are not looked at.
bool meansDefault(const std::vector<std::string>& arguments,
                  const std::vector<std::unique_ptr<Subcommand>>& subcommands) {
    for (std::size_t index = 0; index < arguments.size(); ++index) {
        const std::string& argument = arguments[index];
        if (argument == "--language" || argument == "--sandbox") {
            ++index;
        } else if (argument == "-h" || argument == "--help" || argument == "--version" ||
                   std::ranges::any_of(subcommands, [&](const auto& subcommand) {
                       return subcommand->name() == argument;
                   })) {
            return false;
        }
    }
    return true;
}

std::string joined(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines)
        text += (text.empty() ? "" : "\n") + line;
    return text;
}

/// CLI11's own layout with long texts broken into lines.
class HelpFormatter final : public CLI::Formatter {
public:
    static constexpr std::size_t width = 80;
    static constexpr std::size_t textColumn = 24;

    HelpFormatter() { column_width(textColumn); }

    std::string make_option_desc(const CLI::Option* option) const override {
        return joined(wrapped(Formatter::make_option_desc(option), width - textColumn));
    }
};

/// The parser's English words in the user's language.
void translate(CLI::App& app, const Localization& words) {
    const auto formatter = std::make_shared<HelpFormatter>();
    for (const char* label :
         {"Usage", "OPTIONS", "SUBCOMMAND", "SUBCOMMANDS", "Positionals", "REQUIRED"})
        formatter->label(label, words.text(std::string("cli.help.label.") + label));
    app.formatter(formatter);
    app.option_defaults()->group(words.text("cli.help.group.options"));
    app.set_help_flag("-h,--help", words.text("cli.help.help"));
}

struct Parser {
    CLI::App app;
    std::string language;
    std::optional<std::string> sandbox;
    bool demo = false;

    Parser(const std::vector<std::unique_ptr<Subcommand>>& subcommands, const Localization& words)
        : app(words.text("cli.help.description"), "vellmark") {
        translate(app, words);
        app.set_version_flag("--version", "vellmark " VELLMARK_VERSION,
                             words.text("cli.help.version"));
        app.add_option("--language", language, words.text("cli.help.language"))
            ->type_name("de|en")
            ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
        ParserOptions global(app, words);
        global.flag("--demo", demo, "cli.help.demo");
        global.value("--sandbox", sandbox, "DIR", "cli.help.sandbox");
        app.require_subcommand(1);
        app.fallthrough();
        app.footer(joined(wrapped(words.text("cli.help.footer"), HelpFormatter::width)));
        for (const auto& subcommand : subcommands)
            add(*subcommand, words);
    }

    void add(Subcommand& subcommand, const Localization& words) {
        CLI::App* parser =
            app.add_subcommand(subcommand.name(), words.text(subcommand.summaryKey()));
        parser->group(words.text("cli.help.group.subcommands"));
        parser->get_help_ptr()->group(words.text("cli.help.group.options"));
        parser->footer("");
        if (const std::string key = subcommand.detailKey(); !key.empty())
            parser->footer(joined(wrapped(words.text(key), HelpFormatter::width)));
        ParserOptions options(*parser, words);
        subcommand.declare(options);
    }

    std::string chosen() const {
        const auto parsed = app.get_subcommands();
        return parsed.empty() ? std::string() : parsed.front()->get_name();
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

std::string describe(const CLI::ParseError& error, const std::vector<std::string>& arguments,
                     const CLI::App& app, const Localization& words) {
    const std::string message = error.what();
    if (dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr)
        return words.format("cli.error.unexpected", {firstUnplaced(arguments, app)});
    if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr)
        return words.format("cli.error.valueMissing", {subject(message, ":")});
    if (dynamic_cast<const CLI::RequiredError*>(&error) != nullptr)
        return words.format("cli.error.argumentMissing", {subject(message, " is required")});
    return words.format("cli.error.invalid", {singleLine(message)});
}

} // namespace

std::optional<std::string> requestedLanguage(const std::vector<std::string>& arguments) {
    const std::string prefix = "--language=";
    std::optional<std::string> language;
    for (std::size_t index = 0; index < arguments.size(); ++index) {
        if (arguments[index].starts_with(prefix))
            language = arguments[index].substr(prefix.size());
        else if (arguments[index] == "--language" && index + 1 < arguments.size())
            language = arguments[++index];
    }
    return language && isLanguage(*language) ? language : std::nullopt;
}

std::string helpHint(const std::string& subcommand, const Localization& words) {
    const std::string program = subcommand.empty() ? "vellmark" : "vellmark " + subcommand;
    return words.format("cli.error.hint", {program + " --help"});
}

CommandLine parseCommandLine(std::vector<std::string> arguments,
                             const std::vector<std::unique_ptr<Subcommand>>& subcommands,
                             const Localization& words) {
    if (meansDefault(arguments, subcommands))
        arguments.insert(arguments.begin(), defaultSubcommand);
    Parser parser(subcommands, words);
    try {
        std::vector<std::string> reversed(arguments.rbegin(), arguments.rend());
        parser.app.parse(std::move(reversed));
        if (!parser.language.empty() && !isLanguage(parser.language))
            throw CommandLineFault{
                words.format("cli.error.language", {singleLine(parser.language)}),
                helpHint({}, words)};
    } catch (const CLI::CallForVersion& version) {
        return {.helpText = std::string(version.what()) + "\n"};
    } catch (const CLI::CallForHelp&) {
        return {.helpText = parser.app.help()};
    } catch (const CLI::ParseError& error) {
        throw CommandLineFault{describe(error, arguments, parser.app, words),
                               helpHint(parser.chosen(), words)};
    }
    const auto found = std::ranges::find_if(
        subcommands, [&](const auto& subcommand) { return subcommand->name() == parser.chosen(); });
    return {.subcommand = found->get(), .sandbox = parser.sandbox, .demo = parser.demo};
}

} // namespace vellmark
