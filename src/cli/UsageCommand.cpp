#include "cli/ArgumentValues.h"
#include "cli/Subcommands.h"
#include "cli/UsageRefresh.h"
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
        options.flag("--json", json_, "cli.option.json");
    }

    int run(const CommandContext& context) override {
        UsageState state;
        if (const int status = refreshUsage(context, namedAgents(), state);
            status != ExitStatus::done)
            return status;
        state = readingsOfThisRun(std::move(state));
        if (json_)
            writeJSON(state, context);
        else
            context.output.write(usageText(state, context));
        return report(state, context);
    }

private:
    std::optional<std::set<AgentProviderID>> namedAgents() const {
        if (agents_.empty())
            return std::nullopt;
        std::set<AgentProviderID> named;
        for (const std::string& text : agents_)
            named.insert(agentArgument(text));
        return named;
    }

    static void writeJSON(const UsageState& state, const CommandContext& context) {
        std::vector<AgentUsageSnapshot> ordered;
        for (const ProviderRegistration& registration : providerRegistry()) {
            const auto found = std::ranges::find(state.snapshots, registration.descriptor.id,
                                                 &AgentUsageSnapshot::id);
            if (found != state.snapshots.end())
                ordered.push_back(*found);
        }
        context.output.write(snapshotsDocument(ordered) + "\n");
    }

    /// The failures; where a user sees them in the table already they are not said twice.
    int report(const UsageState& state, const CommandContext& context) const {
        const bool isSeen = !json_ && context.output.isTerminal() && context.errors.isTerminal();
        int status = ExitStatus::done;
        for (const AgentUsageSnapshot& snapshot : state.snapshots) {
            if (!snapshot.error)
                continue;
            status = ExitStatus::failed;
            if (!isSeen)
                context.report(agentName(snapshot.id, context.words) + ": " +
                               singleLine(snapshot.error->message(context.words)));
        }
        return status;
    }

    std::vector<std::string> agents_;
    bool json_ = false;
};

} // namespace

std::unique_ptr<Subcommand> makeUsageCommand() {
    return std::make_unique<UsageCommand>();
}

} // namespace vellmark
