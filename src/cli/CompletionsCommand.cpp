#include "cli/CompletionScripts.h"
#include "cli/Subcommands.h"
#include "cli/WrongArguments.h"
#include "text/TerminalText.h"

#include <string>
#include <vector>

namespace vellmark {
namespace {

/// Prints the script by which a shell completes the program's arguments.
class CompletionsCommand final : public Subcommand {
public:
    std::string name() const override { return "completions"; }
    std::string summaryKey() const override { return "cli.completions.summary"; }
    std::string detailKey() const override { return "cli.completions.detail"; }

    void declare(CommandOptions& options) override {
        options.positional("SHELL", shell_, "cli.completions.shell");
    }
    std::vector<std::string> choices(const std::string& name) const override {
        return name == "SHELL" ? completionShells() : std::vector<std::string>();
    }

    bool hasDemo() const override { return false; }
    bool startsChildren() const override { return false; }

    int run(const CommandContext& context) override {
        const std::string_view script = completionScript(shell_);
        if (script.empty()) {
            throw WrongArguments("cli.error.unknownShell", singleLine(shell_));
        }
        context.output.writeData(script);
        return ExitStatus::done;
    }

private:
    std::string shell_;
};

} // namespace

std::unique_ptr<Subcommand> makeCompletionsCommand() {
    return std::make_unique<CompletionsCommand>();
}

} // namespace vellmark
