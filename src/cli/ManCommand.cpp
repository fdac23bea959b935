#include "cli/CommandLine.h"
#include "cli/ManPage.h"
#include "cli/Subcommands.h"
#include "cli/WrongArguments.h"
#include "platform/WholeFile.h"
#include "text/TerminalText.h"

#include <filesystem>
#include <map>
#include <optional>
#include <string>

namespace vellmark {
namespace {

/// Prints a manual page, or writes all of them.
class ManCommand final : public Subcommand {
public:
    std::string name() const override { return "man"; }
    std::string summaryKey() const override { return "cli.man.summary"; }
    std::string detailKey() const override { return "cli.man.detail"; }

    void declare(CommandOptions& options) override {
        options.optionalPositional("COMMAND", command_, "cli.help.command");
        options.value("--directory", directory_, "DIR", "cli.man.directory");
    }

    bool hasDemo() const override { return false; }
    bool startsChildren() const override { return false; }

    int run(const CommandContext& context) override {
        const ProgramDescription program = describeProgram(allSubcommands(), context.words);
        if (command_ && directory_) {
            throw WrongArguments("cli.error.noEffect", "COMMAND", "--directory");
        }
        if (directory_) {
            return writeAll(program, context);
        }
        const CommandDescription* const command = program.find(command_.value_or(""));
        if (command_ && (command == nullptr || command->isHidden)) {
            throw WrongArguments("cli.error.unknownCommand", singleLine(*command_));
        }
        context.output.writeData(manPage(program, command_.value_or(""), context.words));
        return ExitStatus::done;
    }

private:
    int writeAll(const ProgramDescription& program, const CommandContext& context) const {
        std::map<std::string, std::string> pages{
            {manPageFile(""), manPage(program, "", context.words)},
            {manPageFile("desktop"), desktopManPage(context.words)}};
        for (const CommandDescription& command : program.commands) {
            if (!command.isHidden) {
                pages.emplace(manPageFile(command.name),
                              manPage(program, command.name, context.words));
            }
        }
        for (const auto& [name, page] : pages) {
            const auto file = std::filesystem::path(*directory_) / name;
            if (const auto error =
                    replaceWholeFile(file, page, ReplacementFile::Mode::readableByAll)) {
                context.report(context.words.format(
                    "cli.error.notSaved",
                    {singleLine(file.string()), systemErrorText(error, context.words)}));
                return ExitStatus::failed;
            }
        }
        return ExitStatus::done;
    }

    std::optional<std::string> command_;
    std::optional<std::string> directory_;
};

} // namespace

std::unique_ptr<Subcommand> makeManCommand() {
    return std::make_unique<ManCommand>();
}

} // namespace vellmark
