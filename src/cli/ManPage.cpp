#include "cli/ManPage.h"

#include "presentation/LaunchHelp.h"

#include <algorithm>
#include <cctype>
#include <string_view>

namespace vellmark {
namespace {

/// Text that roff is to print as it is. A hyphen that begins a word is an option's.
std::string literal(std::string_view text) {
    std::string written;
    for (std::size_t index = 0; index < text.size(); ++index) {
        const char character = text[index];
        const char before = index == 0 ? ' ' : text[index - 1];
        if (character == '\\') {
            written += "\\e";
        } else if (character == '-' && std::isalnum(static_cast<unsigned char>(before)) == 0) {
            written += "\\-";
        } else if (character == '\n') {
            written += "\n.br\n";
        } else if ((character == '.' || character == '\'') && (index == 0 || before == '\n')) {
            written += "\\&";
            written += character;
        } else {
            written += character;
        }
    }
    return written;
}

/// What is typed as it stands, in bold: each hyphen is one.
std::string typed(std::string_view text) {
    std::string written;
    for (const char character : text) {
        written += character == '-' ? std::string("\\-") : literal({&character, 1});
    }
    return "\\fB" + written + "\\fR";
}

std::string placeholder(std::string_view text) {
    return "\\fI" + literal(text) + "\\fR";
}

std::string pageName(const std::string& command) {
    return command.empty() ? "vellmark" : "vellmark-" + command;
}

class Page {
public:
    explicit Page(const Localization& words) : words_(words) {}

    void head(const std::string& name, const std::string& summary) {
        std::string title = name;
        std::ranges::transform(title, title.begin(), [](unsigned char character) {
            return static_cast<char>(std::toupper(character));
        });
        text_ += ".\\\" -*- coding: UTF-8 -*-\n.TH " + title +
                 " 1 " VELLMARK_DATE " \"Vellmark " VELLMARK_VERSION "\"\n.nh\n.ad l\n";
        section("man.section.name");
        text_ += replacedHyphens(name) + " \\- " + literal(summary) + "\n";
    }
    void section(const char* key) { text_ += ".SH \"" + words_.text(key) + "\"\n"; }
    void line(const std::string& line) { text_ += line + "\n"; }
    void paragraph(const std::string& text) { text_ += ".PP\n" + literal(text) + "\n"; }
    void entry(const std::string& term, const std::string& text) {
        text_ += ".TP\n" + term + "\n" + literal(text) + "\n";
    }

    void options(const char* key, const std::vector<OptionDescription>& options) {
        if (options.empty()) {
            return;
        }
        section(key);
        for (const OptionDescription& option : options) {
            std::string term;
            for (const std::string& name : option.names) {
                term += (term.empty() ? "" : ", ") + typed(name);
            }
            entry(option.placeholder.empty() ? term : term + " " + placeholder(option.placeholder),
                  option.text);
        }
    }

    void exitStatus() {
        section("man.section.exitStatus");
        for (const char* status : {"0", "1", "2", "130"}) {
            entry(typed(status), words_.text(std::string("man.exit.") + status));
        }
    }

    std::string text() && { return std::move(text_); }

private:
    static std::string replacedHyphens(const std::string& name) {
        std::string written;
        for (const char character : name) {
            written += character == '-' ? std::string("\\-") : std::string(1, character);
        }
        return written;
    }

    const Localization& words_;
    std::string text_;
};

void fileSection(Page& page, const Localization& words) {
    page.section("man.section.files");
    page.entry(placeholder("~/.local/share/Vellmark"), words.text("man.files.data"));
    page.entry(placeholder("~/.config/Vellmark/preferences.json"),
               words.text("man.files.settings"));
    page.paragraph(words.text("man.files.macos"));
}

void programSections(Page& page, const ProgramDescription& program, const Localization& words) {
    page.section("man.section.synopsis");
    page.line(typed("vellmark") + " [" + placeholder(words.text("cli.help.label.options")) + "] [" +
              placeholder(words.text("cli.help.label.command")) + " [" +
              placeholder(words.text("cli.help.label.arguments")) + "]]");
    page.section("man.section.description");
    page.line(literal(words.text("man.description")));
    page.paragraph(program.detail);
    page.section("man.section.commands");
    for (const CommandDescription& command : program.commands) {
        if (!command.isHidden) {
            page.entry(typed(command.name), command.summary);
        }
    }
    page.options("man.section.options", program.options);
    page.exitStatus();
    fileSection(page, words);
    page.section("man.section.seeAlso");
    std::string pages;
    for (const CommandDescription& command : program.commands) {
        if (!command.isHidden) {
            pages += (pages.empty() ? "" : ",\n") + typed(pageName(command.name)) + "(1)";
        }
    }
    page.line(pages);
}

void commandSections(Page& page, const CommandDescription& command,
                     const ProgramDescription& program, const Localization& words) {
    page.section("man.section.synopsis");
    std::string synopsis = typed("vellmark " + command.name) + " [" +
                           placeholder(words.text("cli.help.label.options")) + "]";
    for (const ArgumentDescription& argument : command.arguments) {
        synopsis += " " + placeholder(argument.term());
    }
    page.line(synopsis);
    page.section("man.section.description");
    page.line(literal(command.summary) + ".");
    if (!command.detail.empty()) {
        page.paragraph(command.detail);
    }
    if (!command.arguments.empty()) {
        page.section("man.section.arguments");
        for (const ArgumentDescription& argument : command.arguments) {
            page.entry(placeholder(argument.placeholder), argument.text);
        }
    }
    page.options("man.section.options", command.options);
    page.options("man.section.global", program.optionsFor(command));
    page.exitStatus();
    page.section("man.section.seeAlso");
    page.line(typed("vellmark") + "(1)");
}

/// The desktop application's options, as its own help has them.
std::vector<OptionDescription> desktopOptions(const Localization& words) {
    std::vector<OptionDescription> options;
    for (const LaunchOptionHelp& option : launchOptionHelp()) {
        options.push_back({.names = {option.names},
                           .placeholder = option.placeholder,
                           .text = words.text(option.textKey)});
    }
    return options;
}

} // namespace

std::string manPageFile(const std::string& command) {
    return pageName(command) + ".1";
}

std::string manPage(const ProgramDescription& program, const std::string& command,
                    const Localization& words) {
    const CommandDescription* const one = program.find(command);
    Page page(words);
    page.head(pageName(command), one != nullptr ? one->summary : program.summary);
    if (one != nullptr) {
        commandSections(page, *one, program, words);
    } else {
        programSections(page, program, words);
    }
    return std::move(page).text();
}

std::string desktopManPage(const Localization& words) {
    Page page(words);
    page.head("vellmark-desktop", words.text("man.desktop.summary"));
    page.section("man.section.synopsis");
    page.line(typed("vellmark-desktop") + " [" + placeholder(words.text("cli.help.label.options")) +
              "]");
    page.section("man.section.description");
    page.line(literal(words.text("man.description")));
    page.paragraph(words.text("man.desktop.description"));
    page.options("man.section.options", desktopOptions(words));
    fileSection(page, words);
    page.section("man.section.seeAlso");
    page.line(typed("vellmark") + "(1)");
    return std::move(page).text();
}

} // namespace vellmark
