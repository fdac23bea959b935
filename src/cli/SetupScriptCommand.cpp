#include "cli/ArgumentValues.h"
#include "cli/Subcommands.h"
#include "cli/WrongArguments.h"
#include "probes/ProviderRegistry.h"
#include "setup/SetupScript.h"
#include "text/TerminalText.h"

#include <optional>
#include <string>

namespace vellmark {
namespace {

/// Prints the script that installs an agent's CLI or logs in to it.
class SetupScriptCommand final : public Subcommand {
public:
    std::string name() const override { return "setup-script"; }
    std::string summaryKey() const override { return "cli.setupScript.summary"; }
    std::string detailKey() const override { return "cli.setupScript.detail"; }

    void declare(CommandOptions& options) override {
        options.positional("TASK", task_, "cli.setupScript.task");
        options.positional("AGENT", agent_, "cli.inspect.agent");
        options.flag("--alternative", alternative_, "cli.setupScript.alternative");
        options.value("--tool-path", toolPath_, "PATH", "cli.setupScript.toolPath");
    }

    std::vector<std::string> choices(const std::string& name) const override {
        return name == "TASK" ? std::vector<std::string>{"install", "login"}
                              : std::vector<std::string>();
    }

    bool startsChildren() const override { return false; }
    bool hasDemo() const override { return false; }

    int run(const CommandContext& context) override {
        const auto texts = SetupScriptTexts::localized(context.words);
        context.output.writeData(setupScript(plan(), texts) + "\n");
        return ExitStatus::done;
    }

private:
    SetupScriptPlan plan() const {
        const auto& setup = providerDescriptor(agentArgument(agent_))->setup;
        if (!setup) {
            throw WrongArguments("cli.error.noSetup", agent_);
        }
        if (task_ == "login" && !alternative_) {
            return SetupScriptPlan::login(setup->info, toolPath_);
        }
        if (task_ == "login") {
            throw WrongArguments("cli.error.optionOfInstall", "--alternative");
        }
        if (task_ != "install") {
            throw WrongArguments("cli.error.unknownTask", singleLine(task_));
        }
        auto install = SetupScriptPlan::install(setup->info, alternative_);
        install.toolPath = toolPath_;
        return install;
    }

    std::string task_;
    std::string agent_;
    bool alternative_ = false;
    std::optional<std::string> toolPath_;
};

} // namespace

std::unique_ptr<Subcommand> makeSetupScriptCommand() {
    return std::make_unique<SetupScriptCommand>();
}

} // namespace vellmark
