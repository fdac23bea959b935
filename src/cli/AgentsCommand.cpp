#include "cli/ArgumentValues.h"
#include "cli/InterruptibleWork.h"
#include "cli/StorageNews.h"
#include "cli/Subcommands.h"
#include "cli/Table.h"
#include "cli/WrongArguments.h"
#include "model/UsageJSON.h"
#include "platform/Preferences.h"
#include "presentation/AgentBlockContent.h"
#include "probes/AgentFacts.h"
#include "probes/ProviderRegistry.h"
#include "store/AgentSettings.h"
#include "text/TerminalText.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <iterator>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace vellmark {
namespace {

/// Lists the agents that can be monitored and what is known about their CLIs, or changes which of
/// them are shown and in which order.
class AgentsCommand final : public Subcommand {
public:
    std::string name() const override { return "agents"; }
    std::string summaryKey() const override { return "cli.agents.summary"; }
    std::string detailKey() const override { return "cli.agents.detail"; }

    void declare(CommandOptions& options) override {
        options.optionalPositional("ACTION", action_, "cli.agents.action");
        options.optionalPositionals("AGENT", named_, "cli.inspect.agent");
        options.flag("--json", json_, "cli.option.json");
    }

    std::vector<std::string> choices(const std::string& name) const override {
        return name == "ACTION" ? std::vector<std::string>{"enable", "disable", "order"}
                                : std::vector<std::string>();
    }

    bool startsChildren() const override { return !action_; }

    int run(const CommandContext& context) override {
        const auto preferences = makePreferences(context.machine);
        reportUnreadable(*preferences, context);
        if (action_) {
            return change(*preferences, context);
        }
        const AgentSettings settings(*preferences, providerRegistry());
        const auto enabled = settings.enabled();
        std::vector<AgentFacts> agents;
        if (const int status = gather(context, agents); status != ExitStatus::done) {
            return status;
        }
        const std::vector<AgentProviderID> order = settings.order();
        std::ranges::sort(agents, {}, [&](const AgentFacts& agent) {
            return std::ranges::find(order, agent.id) - order.begin();
        });
        if (json_) {
            writeJSON(agents, enabled, context);
        } else {
            writeTable(agents, enabled, context);
        }
        return ExitStatus::done;
    }

private:
    int change(Preferences& preferences, const CommandContext& context) const {
        if (*action_ != "enable" && *action_ != "disable" && *action_ != "order") {
            throw WrongArguments("cli.agents.unknownAction", singleLine(*action_));
        }
        std::vector<AgentProviderID> agents;
        std::ranges::transform(named_, std::back_inserter(agents), agentArgument);
        if (agents.empty()) {
            throw WrongArguments("cli.error.argumentMissing", "AGENT");
        }
        AgentSettings settings(preferences, providerRegistry());
        if (*action_ == "order") {
            settings.setOrder(settings.completed(agents));
        } else {
            for (const AgentProviderID& id : agents) {
                settings.setEnabled(id, *action_ == "enable");
            }
        }
        if (const auto error = preferences.writeError()) {
            context.report(context.words.format("cli.settings.unwritable",
                                                {systemErrorText(*error, context.words)}));
            return ExitStatus::failed;
        }
        json_ ? writeShownJSON(settings, context) : writeShown(settings, context);
        return ExitStatus::done;
    }

    /// All in their order, with what holds now.
    static void writeShown(const AgentSettings& settings, const CommandContext& context) {
        const auto word = [&](const char* key) { return context.words.text(key); };
        const std::set<AgentProviderID> enabled = settings.enabled();
        Table table({{word("cli.agents.column.name")}, {word("cli.agents.column.enabled")}});
        for (const AgentProviderID& id : settings.order()) {
            table.addRow({{agentName(id, context.words), TextStyle::strong},
                          {word(enabled.contains(id) ? "cli.agents.yes" : "cli.agents.no")}});
        }
        context.output.write(table.text(context.output));
    }

    static void writeShownJSON(const AgentSettings& settings, const CommandContext& context) {
        const std::set<AgentProviderID> enabled = settings.enabled();
        JSON list = JSON::array();
        for (const AgentProviderID& id : settings.order()) {
            list.push_back({{"id", id.rawValue},
                            {"name", agentName(id, context.words)},
                            {"enabled", enabled.contains(id)}});
        }
        context.output.writeData(serialized(list) + "\n");
    }

    static int gather(const CommandContext& context, std::vector<AgentFacts>& agents) {
        return runInterruptibly(context, context.words.text("cli.agents.progress"),
                                [&] { agents = gatherAgentFacts(context.machine); });
    }

    static void writeJSON(const std::vector<AgentFacts>& agents,
                          const std::set<AgentProviderID>& enabled, const CommandContext& context) {
        JSON list = JSON::array();
        for (const AgentFacts& agent : agents) {
            JSON entry{{"id", agent.id.rawValue},
                       {"name", agentName(agent.id, context.words)},
                       {"enabled", enabled.contains(agent.id)}};
            if (agent.toolPath) {
                entry["toolPath"] = agent.toolPath->string();
            }
            if (agent.toolVersion) {
                entry["toolVersion"] = singleLine(*agent.toolVersion);
            }
            if (agent.loggedIn) {
                entry["loggedIn"] = *agent.loggedIn;
            }
            list.push_back(std::move(entry));
        }
        context.output.writeData(serialized(list) + "\n");
    }

    static void writeTable(const std::vector<AgentFacts>& agents,
                           const std::set<AgentProviderID>& enabled,
                           const CommandContext& context) {
        const auto word = [&](const char* key) { return context.words.text(key); };
        Table table({{word("cli.agents.column.name")},
                     {word("cli.agents.column.enabled")},
                     {word("cli.agents.column.loggedIn")},
                     {word("cli.agents.column.version")},
                     {word("cli.agents.column.tool")}});
        for (const AgentFacts& agent : agents) {
            const char* login = !agent.loggedIn   ? "cli.agents.unknown"
                                : *agent.loggedIn ? "cli.agents.yes"
                                                  : "cli.agents.no";
            table.addRow({{agentName(agent.id, context.words), TextStyle::strong},
                          {word(enabled.contains(agent.id) ? "cli.agents.yes" : "cli.agents.no")},
                          {word(login)},
                          {singleLine(agent.toolVersion.value_or("–"))},
                          {agent.toolPath ? singleLine(context.machine.abbreviated(*agent.toolPath))
                                          : word("cli.agents.toolMissing")}});
        }
        context.output.write(table.text(context.output));
    }

    std::optional<std::string> action_;
    std::vector<std::string> named_;
    bool json_ = false;
};

} // namespace

std::unique_ptr<Subcommand> makeAgentsCommand() {
    return std::make_unique<AgentsCommand>();
}

} // namespace vellmark
