#pragma once

#include "model/UsageHistorySample.h"
#include "store/UsageState.h"

#include <string>
#include <utility>
#include <vector>

namespace vellmark::tests {

/// 20 November 2025, 13:48 UTC.
inline constexpr Instant noon{Seconds(785339280)};

/// A window of `minutes` of which `left` minutes remain; a negative `left` lies in the past.
inline UsageWindow window(std::string id, double used, double minutes, double left) {
    return {.id = std::move(id),
            .usedPercent = used,
            .windowDurationMinutes = minutes,
            .resetsAt = noon + Seconds(left * 60)};
}

inline UsageWindow windowWithoutReset(std::string id, double used) {
    return {.id = std::move(id), .usedPercent = used};
}

/// A sample that was taken `ago` seconds before noon, of a window that resets `resetsIn` after it.
inline UsageHistorySample sampleOf(AgentProviderID agent, std::string windowID, double ago,
                                   double used, double resetsIn) {
    return {.provider = std::move(agent),
            .windowID = std::move(windowID),
            .capturedAt = noon - Seconds(ago),
            .usedPercent = used,
            .resetsAt = noon + Seconds(resetsIn)};
}

inline AgentUsageSnapshot live(AgentProviderID id, std::vector<UsageWindow> windows) {
    AgentUsageSnapshot snapshot;
    snapshot.id = std::move(id);
    snapshot.windows = std::move(windows);
    snapshot.source = SnapshotSource::live;
    snapshot.updatedAt = noon - Seconds(120);
    return snapshot;
}

inline AgentUsageSnapshot failed(AgentProviderID id, UsageProviderError error,
                                 std::vector<UsageWindow> windows = {}) {
    AgentUsageSnapshot snapshot = live(std::move(id), std::move(windows));
    snapshot.source = SnapshotSource::stale;
    snapshot.error = std::move(error);
    return snapshot;
}

/// The state after a refresh that ended two minutes ago; all agents are enabled.
inline UsageState stateOf(std::vector<AgentUsageSnapshot> snapshots) {
    UsageState state;
    for (const AgentUsageSnapshot& snapshot : snapshots) {
        state.enabledProviderIDs.insert(snapshot.id);
        state.providerOrder.push_back(snapshot.id);
        if (!snapshot.error) {
            state.lastSuccess[snapshot.id] = snapshot.updatedAt;
        }
    }
    state.snapshots = std::move(snapshots);
    state.lastRefreshCompletedAt = noon - Seconds(120);
    return state;
}

} // namespace vellmark::tests
