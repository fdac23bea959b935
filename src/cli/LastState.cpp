#include "cli/LastState.h"

#include "cli/StorageNews.h"
#include "cli/Subcommand.h"
#include "platform/Preferences.h"
#include "probes/ProviderRegistry.h"
#include "store/AgentSettings.h"
#include "store/AppSettings.h"
#include "store/LastSnapshots.h"
#include "store/ReadingTime.h"
#include "store/StatusLineReadings.h"

#include <algorithm>

namespace vellmark {
namespace {

AgentUsageSnapshot neverRead(const AgentProviderID& id) {
    AgentUsageSnapshot snapshot;
    snapshot.id = id;
    return snapshot;
}

/// One agent as it is shown, with what its sessions have told since.
void addAgent(UsageState& state, const AgentProviderID& id, const LastSnapshots::Contents& contents,
              Seconds current, const CommandContext& context, Instant now) {
    const auto reading = std::ranges::find(contents.readings, id, &AgentUsageSnapshot::id);
    state.snapshots.push_back(reading == contents.readings.end() ? neverRead(id) : *reading);
    AgentUsageSnapshot& shown = state.snapshots.back();
    if (reading != contents.readings.end()) {
        const bool isCurrent = now - reading->updatedAt <= current;
        shown.source = isCurrent ? SnapshotSource::live : SnapshotSource::stale;
        state.lastSuccess[id] = reading->updatedAt;
    }
    if (id == AgentProviderID::claude()) {
        const StatusLineReadings told(context.machine.statusLineFile());
        takeNewerWindows(shown, newestWindows(told.read(), now), readingTimeOf(state, shown));
    }
}

UsageState stateOf(const LastSnapshots::Contents& contents,
                   const std::vector<AgentProviderID>& order,
                   const std::set<AgentProviderID>& enabled, const Preferences& preferences,
                   const CommandContext& context, Instant now) {
    UsageState state;
    state.firstFigure = valueOf(preferences, setting::firstFigure);
    state.providerOrder = order;
    state.enabledProviderIDs = enabled;
    for (const AgentProviderID& id : order) {
        if (enabled.contains(id)) {
            addAgent(state, id, contents, 2 * readingInterval(preferences), context, now);
        }
    }
    return state;
}

} // namespace

Seconds readingInterval(const Preferences& preferences) {
    return length(valueOf(preferences, setting::readingInterval));
}

UsageState lastState(Preferences& preferences, const CommandContext& context, Instant now) {
    const AgentSettings settings(preferences, providerRegistry());
    const auto contents = LastSnapshots(context.machine.lastSnapshotsFile()).contents();
    reportUnreadable(contents, context);
    return stateOf(contents, settings.order(), settings.enabled(), preferences, context, now);
}

UsageState lastStateOf(const AgentProviderID& agent, const Preferences& preferences,
                       const CommandContext& context, Instant now) {
    return stateOf(LastSnapshots(context.machine.lastSnapshotsFile()).contents(), {agent}, {agent},
                   preferences, context, now);
}

} // namespace vellmark
