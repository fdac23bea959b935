#include "cli/ArgumentValues.h"
#include "cli/Subcommands.h"
#include "cli/UsageRefresh.h"
#include "cli/UsageView.h"
#include "cli/WrongArguments.h"
#include "model/UsageJSON.h"
#include "presentation/AgentBlockContent.h"
#include "probes/ProviderRegistry.h"
#include "text/TerminalText.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace vellmark {
namespace {

/// One refresh of all enabled agents, or of those named, and what it read.
class UsageCommand final : public Subcommand {
public:
    std::string name() const override { return "usage"; }
    std::string summaryKey() const override { return "cli.usage.summary"; }
    std::string detailKey() const override { return "cli.usage.detail"; }

    void declare(CommandOptions& options) override {
        options.values("--agent", agents_, "ID", "cli.usage.agent");
        options.value("--by", way_, "WAY", "cli.usage.by");
        options.flag("--json", json_, "cli.option.json");
    }

    std::vector<std::string> choices(const std::string& name) const override {
        return name == "--by" ? std::vector<std::string>{"query", "session"}
                              : std::vector<std::string>();
    }

    int run(const CommandContext& context) override {
        UsageState state;
        const auto agents = namedAgents();
        checkWay(agents);
        const auto show = [&](const UsageState& read) {
            json_ ? writeJSON(read, context) : writeText(read, context);
        };
        const int status = refreshUsage(
            context, {.agents = agents, .way = way_, .showsFigures = !json_, .show = show}, state);
        return status == ExitStatus::done ? report(state, context) : status;
    }

private:
    std::optional<std::set<AgentProviderID>> namedAgents() const {
        if (agents_.empty()) {
            return std::nullopt;
        }
        std::set<AgentProviderID> named;
        for (const std::string& text : agents_) {
            named.insert(agentArgument(text));
        }
        return named;
    }

    /// A way must be one of an agent that is read; for the others it means nothing.
    void checkWay(const std::optional<std::set<AgentProviderID>>& agents) const {
        if (!way_) {
            return;
        }
        std::string known;
        for (const ProviderRegistration& registration : providerRegistry()) {
            const ProviderDescriptor& agent = registration.descriptor;
            if (agents && !agents->contains(agent.id)) {
                continue;
            }
            for (const std::string& way : agent.readingWays) {
                if (way == *way_) {
                    return;
                }
                known += (known.empty() ? "" : ", ") + way;
            }
        }
        throw WrongArguments("cli.error.unknownWay", singleLine(*way_),
                             known.empty() ? "–" : known);
    }

    static void writeText(const UsageState& state, const CommandContext& context) {
        const auto blocks = agentBlocks(state, ReferenceClock::now(), context.words);
        if (blocks.empty()) {
            context.note(context.words.text("agents.none.title"));
        }
        context.output.write(UsageView(context.output, context.words).text(blocks));
    }

    static void writeJSON(const UsageState& state, const CommandContext& context) {
        std::vector<AgentUsageSnapshot> ordered;
        for (const ProviderRegistration& registration : providerRegistry()) {
            const auto found = std::ranges::find(state.snapshots, registration.descriptor.id,
                                                 &AgentUsageSnapshot::id);
            if (found != state.snapshots.end()) {
                ordered.push_back(*found);
            }
        }
        context.output.writeData(snapshotsDocument(ordered) + "\n");
    }

    /// A failure is told once: the table has it below the agent's last figures.
    int report(const UsageState& state, const CommandContext& context) const {
        int status = ExitStatus::done;
        for (const AgentUsageSnapshot& snapshot : state.snapshots) {
            if (!snapshot.error) {
                continue;
            }
            status = ExitStatus::failed;
            if (json_) {
                context.report(agentName(snapshot.id, context.words) + ": " +
                               singleLine(snapshot.error->message(context.words)));
            }
        }
        return status;
    }

    std::vector<std::string> agents_;
    std::optional<std::string> way_;
    bool json_ = false;
};

} // namespace

std::unique_ptr<Subcommand> makeUsageCommand() {
    return std::make_unique<UsageCommand>();
}

} // namespace vellmark
