#include "cli/InterruptibleWork.h"
#include "cli/StorageNews.h"
#include "cli/Subcommands.h"
#include "cli/Table.h"
#include "model/UsageJSON.h"
#include "platform/Preferences.h"
#include "presentation/AgentBlockContent.h"
#include "probes/AgentFacts.h"
#include "probes/ProviderRegistry.h"
#include "store/AgentSettings.h"
#include "text/TerminalText.h"

#include <nlohmann/json.hpp>

#include <set>
#include <string>
#include <vector>

namespace vellmark {
namespace {

/// Lists the agents that can be monitored and what is known about their CLIs.
class AgentsCommand final : public Subcommand {
public:
    std::string name() const override { return "agents"; }
    std::string summaryKey() const override { return "cli.agents.summary"; }

    void declare(CommandOptions& options) override {
        options.flag("--json", json_, "cli.option.json");
    }

    int run(const CommandContext& context) override {
        const auto preferences = makePreferences(context.machine);
        reportUnreadable(*preferences, context);
        const auto enabled = AgentSettings(*preferences, providerRegistry()).enabled();
        std::vector<AgentFacts> agents;
        if (const int status = gather(context, agents); status != ExitStatus::done) {
            return status;
        }
        if (json_) {
            writeJSON(agents, enabled, context);
        } else {
            writeTable(agents, enabled, context);
        }
        return ExitStatus::done;
    }

private:
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

    bool json_ = false;
};

} // namespace

std::unique_ptr<Subcommand> makeAgentsCommand() {
    return std::make_unique<AgentsCommand>();
}

} // namespace vellmark
