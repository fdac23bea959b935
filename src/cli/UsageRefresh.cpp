#include "cli/UsageRefresh.h"

#include "cli/Subcommand.h"
#include "cli/TerminalLoop.h"
#include "cli/UsageView.h"
#include "platform/Preferences.h"
#include "presentation/AgentBlockContent.h"
#include "probes/ProviderRegistry.h"
#include "store/AgentUsageStore.h"

#include <vector>

namespace vellmark {
namespace {

/// The agents that the running refresh has not read yet, by name.
std::string namesBeingRead(const UsageState& state, Instant start, const Localization& words) {
    std::string names;
    for (const AgentUsageSnapshot& snapshot : state.snapshots) {
        const bool isRead =
            snapshot.source != SnapshotSource::loading && snapshot.updatedAt >= start;
        if (!isRead)
            names += (names.empty() ? "" : ", ") + agentName(snapshot.id, words);
    }
    return names;
}

int refresh(AgentUsageStore& store, TerminalLoop& loop, const CommandContext& context) {
    const Instant start = ReferenceClock::now();
    ProgressLine progress(context.errors);
    const auto follow = [&] {
        if (!store.state().isRefreshing) {
            loop.stop(ExitStatus::done);
            return;
        }
        // With the last reading there, the refresh may still have to end.
        if (const std::string names = namesBeingRead(store.state(), start, context.words);
            !names.empty())
            progress.show(context.words.format("cli.usage.progress", {names}));
    };
    const auto subscription = store.observe({.willChange = {}, .didChange = follow});
    store.refresh(RefreshTrigger::manual);
    follow();
    const int status = loop.run();
    if (loop.endingSignal() != 0)
        store.abortRefresh();
    return status;
}

} // namespace

int refreshUsage(const CommandContext& context, std::optional<std::set<AgentProviderID>> agents,
                 UsageState& state) {
    const auto preferences = makePreferences(context.machine);
    TerminalLoop loop;
    AgentUsageStore store({.machine = context.machine,
                           .registrations = providerRegistry(),
                           .words = [&context] { return context.words; },
                           .agents = std::move(agents)},
                          loop, *preferences);
    const int status = refresh(store, loop, context);
    state = store.state();
    return status;
}

UsageState readingsOfThisRun(UsageState state) {
    for (AgentUsageSnapshot& snapshot : state.snapshots) {
        if (!snapshot.error)
            continue;
        snapshot = {.id = snapshot.id,
                    .source = SnapshotSource::stale,
                    .updatedAt = snapshot.updatedAt,
                    .error = snapshot.error};
    }
    return state;
}

std::string usageText(const UsageState& state, const CommandContext& context) {
    std::vector<AgentBlockContent> blocks;
    const Instant now = ReferenceClock::now();
    for (const AgentUsageSnapshot& snapshot : state.snapshots)
        blocks.push_back(agentBlockContent(snapshot, state, now, context.words));
    const std::string hint =
        blocks.empty() ? context.words.text("agents.none.title") + "\n" : std::string();
    return hint + UsageView(context.output, context.words).text(blocks);
}

} // namespace vellmark
