#pragma once

#include "model/AgentUsageSnapshot.h"
#include "model/UsageRules.h"
#include "store/FirstFigure.h"
#include "store/StorageTrouble.h"

#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace vellmark {

/// What started a refresh.
enum class RefreshTrigger { launch, timer, manual, wake, window, settings };

/// Names a window among all agents.
using WindowKey = std::pair<AgentProviderID, std::string>;

/// The store's published state as one plain value, for everything that shows it.
struct UsageState {
    /// In `providerOrder`, enabled agents only. An agent that was never read appears when its first
    /// reading starts (`loading`).
    std::vector<AgentUsageSnapshot> snapshots;
    bool isRefreshing = false;
    /// The finished share of the running refresh, 0 to 1; stays 1 after it.
    double refreshProgress = 0;
    /// Agents whose reading is under way.
    std::set<AgentProviderID> reading;
    /// By this run of the program; absent before its first refresh of all agents has ended. Reading
    /// some of them again does not make the others newer.
    std::optional<Instant> lastRefreshCompletedAt;
    std::set<AgentProviderID> enabledProviderIDs;
    /// Every registered agent, enabled or not.
    std::vector<AgentProviderID> providerOrder;
    /// Until then, refreshes by `timer` and `window` do nothing.
    std::optional<Instant> automaticHoldUntil;
    /// When the figures of an agent were last read well; for the age of stale figures.
    std::map<AgentProviderID, Instant> lastSuccess;
    /// How long that reading took; of this run of the program.
    std::map<AgentProviderID, Seconds> readingTook;
    /// Agents that automatic refreshes leave alone until then: their service refuses for now, or a
    /// reading of them costs.
    std::map<AgentProviderID, Instant> restsUntil;
    std::optional<Instant> restsUntilOf(const AgentProviderID& agent) const {
        const auto found = restsUntil.find(agent);
        return found != restsUntil.end() ? std::optional(found->second) : std::nullopt;
    }
    /// Agents that are read when the user asks and never by themselves: each reading costs.
    std::set<AgentProviderID> readByHandOnly;
    /// Null when the agent shows no such window. Valid until the state changes.
    const UsageWindow* window(const AgentProviderID& agent, const std::string& windowID) const;
    /// The last two hours of history of each window shown, oldest first: the basis of its forecast.
    std::map<WindowKey, std::vector<UsagePoint>> recentPoints;
    /// Those of one window; empty without any. Valid until the state changes.
    std::span<const UsagePoint> recentPointsOf(const AgentProviderID& agent,
                                               const std::string& windowID) const {
        const auto found = recentPoints.find({agent, windowID});
        return found != recentPoints.end() ? std::span<const UsagePoint>(found->second)
                                           : std::span<const UsagePoint>();
    }
    /// Why a file is not written, for as long as that lasts.
    std::optional<StorageTrouble::News> unwritten;
    /// What every front says first of a quota.
    FirstFigure firstFigure = FirstFigure::left;
    /// Rise with every new sample and every new log entry, for pages that show them.
    unsigned historyRevision = 0;
    unsigned activityRevision = 0;

    bool operator==(const UsageState&) const = default;
};

inline const UsageWindow* UsageState::window(const AgentProviderID& agent,
                                             const std::string& windowID) const {
    for (const AgentUsageSnapshot& snapshot : snapshots) {
        for (const UsageWindow& window : snapshot.windows) {
            if (snapshot.id == agent && window.id == windowID) {
                return &window;
            }
        }
    }
    return nullptr;
}

} // namespace vellmark
