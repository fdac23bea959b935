#include "cli/ArgumentValues.h"
#include "cli/InterruptibleWork.h"
#include "cli/Prompt.h"
#include "cli/Subcommands.h"
#include "cli/Table.h"
#include "cli/UsageRefresh.h"
#include "cli/UsageView.h"
#include "model/UsageJSON.h"
#include "probes/ProviderRegistry.h"
#include "setup/AgentSetupStatus.h"
#include "setup/SetupScript.h"
#include "setup/SetupTraces.h"
#include "setup/TerminalScript.h"
#include "text/TerminalText.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <string>
#include <unistd.h>
#include <vector>

namespace vellmark {
namespace {

const char* nameOf(AgentSetupStatus status) {
    switch (status) {
    case AgentSetupStatus::missing:
        return "missing";
    case AgentSetupStatus::notLoggedIn:
        return "notLoggedIn";
    case AgentSetupStatus::ready:
        return "ready";
    case AgentSetupStatus::unverifiable:
        break;
    }
    return "unverifiable";
}

/// Something that can be done about an agent, as the user is asked.
struct SetupTask {
    const ProviderDescriptor* agent;
    std::string title;
    SetupScriptPlan plan;
};

/// Shows how far each agent is set up and, on a terminal, does what is missing.
class SetupCommand final : public Subcommand {
public:
    std::string name() const override { return "setup"; }
    std::string summaryKey() const override { return "cli.setup.summary"; }
    std::string detailKey() const override { return "cli.setup.detail"; }

    void declare(CommandOptions& options) override {
        options.optionalPositional("AGENT", agent_, "cli.inspect.agent");
        options.flag("--json", json_, "cli.option.json");
    }

    DemoSandbox::Agents demoAgents() const override { return DemoSandbox::Agents::asOnANewMachine; }

    int run(const CommandContext& context) override {
        chooseAgents();
        if (const int status = check(context); status != ExitStatus::done) {
            return status;
        }
        if (json_) {
            writeJSON(context);
        } else {
            writeStatus(context);
        }
        if (json_ || !context.output.isTerminal() || isatty(STDIN_FILENO) == 0) {
            return std::ranges::any_of(statuses_, needsSetup) ? ExitStatus::failed
                                                              : ExitStatus::done;
        }
        return offerTasks(context);
    }

private:
    void chooseAgents() {
        registrations_ = providerRegistry();
        if (agent_) {
            const auto id = agentArgument(*agent_);
            std::erase_if(registrations_, [&id](const ProviderRegistration& registration) {
                return registration.descriptor.id != id;
            });
        }
    }

    int check(const CommandContext& context) {
        return runInterruptibly(context, context.words.text("cli.agents.progress"), [&] {
            statuses_ = agentSetupStatuses(context.machine, registrations_);
        });
    }

    void writeJSON(const CommandContext& context) const {
        JSON list = JSON::array();
        for (std::size_t i = 0; i < registrations_.size(); ++i) {
            const ProviderDescriptor& agent = registrations_[i].descriptor;
            JSON entry{{"id", agent.id.rawValue},
                       {"name", context.words.text(agent.nameKey)},
                       {"status", nameOf(statuses_[i])}};
            if (const auto path = agent.executableLocator(context.machine)) {
                entry["toolPath"] = path->string();
            }
            list.push_back(std::move(entry));
        }
        context.output.writeData(serialized(list) + "\n");
    }

    void writeStatus(const CommandContext& context) const {
        const auto word = [&](std::string_view key) { return context.words.text(key); };
        Table table({{word("cli.agents.column.name")},
                     {word("cli.setup.column.status")},
                     {word("cli.agents.column.tool")}});
        for (std::size_t i = 0; i < registrations_.size(); ++i) {
            const ProviderDescriptor& agent = registrations_[i].descriptor;
            const auto path = agent.executableLocator(context.machine);
            table.addRow({{word(agent.nameKey), TextStyle::strong},
                          {word(setupStatusKey(statuses_[i]))},
                          {path ? singleLine(context.machine.abbreviated(*path)) : "–"}});
        }
        context.output.write(table.text(context.output));
    }

    int offerTasks(const CommandContext& context) {
        for (;;) {
            const auto tasks = this->tasks(context);
            if (tasks.empty()) {
                context.output.write("\n" + context.words.text("cli.setup.allReady") + "\n");
                return ExitStatus::done;
            }
            writeTasks(tasks, context);
            Prompt prompt(context);
            const auto answer = prompt.ask(context.words.text("cli.setup.question") + " ");
            if (!answer || answer->empty()) {
                return prompt.endingStatus();
            }
            const SetupTask* task = chosen(*answer, tasks);
            if (task == nullptr) {
                context.report(
                    context.words.format("cli.setup.noSuchChoice", {singleLine(*answer)}));
                continue;
            }
            if (const int status = perform(*task, context); status != ExitStatus::done) {
                return status;
            }
        }
    }

    std::vector<SetupTask> tasks(const CommandContext& context) const {
        std::vector<SetupTask> result;
        for (std::size_t i = 0; i < registrations_.size(); ++i) {
            const ProviderDescriptor& agent = registrations_[i].descriptor;
            if (!agent.setup || statuses_[i] == AgentSetupStatus::ready) {
                continue;
            }
            const auto name = context.words.text(agent.nameKey);
            const CLISetupInfo& info = agent.setup->info;
            if (statuses_[i] == AgentSetupStatus::missing) {
                result.push_back({&agent, context.words.format("cli.setup.install", {name}),
                                  SetupScriptPlan::install(info, false)});
                if (hasHomebrew(context.machine)) {
                    result.push_back({&agent,
                                      context.words.format("cli.setup.installAlternative", {name}),
                                      SetupScriptPlan::install(info, true)});
                }
                continue;
            }
            const auto path = agent.executableLocator(context.machine);
            result.push_back({&agent, context.words.format("cli.setup.login", {name}),
                              SetupScriptPlan::login(info, path ? std::optional(path->string())
                                                                : std::nullopt)});
        }
        return result;
    }

    static void writeTasks(const std::vector<SetupTask>& tasks, const CommandContext& context) {
        std::string text = "\n";
        for (std::size_t i = 0; i < tasks.size(); ++i) {
            text += "  " + context.output.styled(TextStyle::strong, std::to_string(i + 1)) + "  " +
                    tasks[i].title + "\n     " +
                    context.output.styled(TextStyle::dim, tasks[i].plan.command) + "\n";
        }
        context.output.write(text + "\n");
    }

    static const SetupTask* chosen(const std::string& answer, const std::vector<SetupTask>& tasks) {
        for (std::size_t i = 0; i < tasks.size(); ++i) {
            if (answer == std::to_string(i + 1)) {
                return &tasks[i];
            }
        }
        return nullptr;
    }

    /// Runs the task in this terminal, then looks at the agent again and reads it.
    int perform(const SetupTask& task, const CommandContext& context) {
        if (!TerminalScript::shell()) {
            context.output.write(
                context.words.format("cli.setup.noShell", {"\n\n  " + task.plan.command}) + "\n");
            return ExitStatus::failed;
        }
        const bool isLogin = task.plan.kind == SetupScriptPlan::Kind::login;
        const auto& hintKey =
            isLogin ? task.agent->setup->loginHintKey : task.agent->setup->missingHintKey;
        if (hintKey) {
            context.output.write(context.words.text(*hintKey) + "\n");
        }
        const auto script = setupScript(task.plan, SetupScriptTexts::localized(context.words));
        int status = runInterruptibly(
            context, {}, [&] { TerminalScript(context.machine, STDIN_FILENO).run(script); });
        if (status == ExitStatus::done) {
            status = check(context);
        }
        if (status != ExitStatus::done) {
            return status;
        }
        context.output.write("\n");
        writeStatus(context);
        return mayBeReady(*task.agent) ? read(*task.agent, context) : ExitStatus::done;
    }

    /// Also where the check could not tell: the reading can.
    bool mayBeReady(const ProviderDescriptor& agent) const {
        const auto found = std::ranges::find_if(registrations_, [&](const auto& registration) {
            return registration.descriptor.id == agent.id;
        });
        const auto index = static_cast<std::size_t>(found - registrations_.begin());
        return statuses_[index] == AgentSetupStatus::ready ||
               statuses_[index] == AgentSetupStatus::unverifiable;
    }

    static int read(const ProviderDescriptor& agent, const CommandContext& context) {
        UsageState state;
        const int status = refreshUsage(context, {.agents = std::set{agent.id}}, state);
        if (status == ExitStatus::done) {
            context.output.write(
                "\n" + UsageView(context.output, context.words)
                           .text(agentBlocks(state, ReferenceClock::now(), context.words)));
        }
        return status;
    }

    std::optional<std::string> agent_;
    bool json_ = false;
    std::vector<ProviderRegistration> registrations_;
    std::vector<AgentSetupStatus> statuses_;
};

} // namespace

std::unique_ptr<Subcommand> makeSetupCommand() {
    return std::make_unique<SetupCommand>();
}

} // namespace vellmark
