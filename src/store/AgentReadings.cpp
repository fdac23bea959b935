#include "store/AgentReadings.h"

#include <algorithm>
#include <utility>

namespace vellmark {

void AgentReadings::restore(AgentUsageSnapshot reading) {
    reading.source = SnapshotSource::stale;
    reading.notes.clear();
    succeed(std::move(reading));
}

void AgentReadings::attempt(const AgentProviderID& id, Instant now) {
    AgentUsageSnapshot loading;
    loading.id = id;
    loading.source = SnapshotSource::loading;
    loading.updatedAt = now;
    shown_.try_emplace(id, std::move(loading));
}

void AgentReadings::succeed(AgentUsageSnapshot reading) {
    lastGood_[reading.id] = reading;
    shown_[reading.id] = std::move(reading);
}

void AgentReadings::fallBack(AgentUsageSnapshot reading, Instant attemptedAt) {
    const AgentProviderID id = reading.id;
    UsageProviderError error = std::move(*reading.error);
    reading.error.reset();
    const AgentUsageSnapshot* const good = lastGood(id);
    if (!good || good->updatedAt < reading.updatedAt) {
        lastGood_[id] = std::move(reading);
    }
    fail(id, std::move(error), attemptedAt);
}

void AgentReadings::fail(const AgentProviderID& id, UsageProviderError error, Instant attemptedAt) {
    AgentUsageSnapshot snapshot;
    if (const AgentUsageSnapshot* good = lastGood(id)) {
        snapshot = *good;
        snapshot.notes.clear();
    }
    snapshot.id = id;
    snapshot.source = SnapshotSource::stale;
    snapshot.updatedAt = attemptedAt;
    snapshot.error = std::move(error);
    shown_[id] = std::move(snapshot);
}

void AgentReadings::keepAbsentWindows(
    AgentUsageSnapshot& reading, const std::function<Seconds(std::string_view)>& remembers) const {
    const AgentUsageSnapshot* const good = lastGood(reading.id);
    if (!good) {
        return;
    }
    for (const UsageWindow& window : good->windows) {
        const bool isThere = std::ranges::find(reading.windows, window.id, &UsageWindow::id) !=
                             reading.windows.end();
        const bool isOver = window.resetsAt && *window.resetsAt <= reading.updatedAt;
        const Instant readAt = window.readAt.value_or(good->updatedAt);
        const Seconds age = reading.updatedAt - readAt;
        if (isThere || isOver ||
            !(reading.isIncomplete || (remembers && age < remembers(window.id)))) {
            continue;
        }
        reading.windows.push_back(window);
        reading.windows.back().readAt = readAt;
    }
}

void AgentReadings::abandon(const AgentProviderID& id) {
    const auto known = shown_.find(id);
    if (known != shown_.end() && known->second.source == SnapshotSource::loading) {
        shown_.erase(known);
    }
}

void AgentReadings::abandonAll() {
    std::erase_if(shown_,
                  [](const auto& entry) { return entry.second.source == SnapshotSource::loading; });
}

const AgentUsageSnapshot* AgentReadings::lastGood(const AgentProviderID& id) const {
    const auto known = lastGood_.find(id);
    return known == lastGood_.end() ? nullptr : &known->second;
}

std::vector<AgentUsageSnapshot>
AgentReadings::shown(const std::vector<AgentProviderID>& order,
                     const std::set<AgentProviderID>& enabled) const {
    std::vector<AgentUsageSnapshot> snapshots;
    for (const AgentProviderID& id : order) {
        const auto known = shown_.find(id);
        if (known != shown_.end() && enabled.contains(id)) {
            snapshots.push_back(known->second);
        }
    }
    return snapshots;
}

} // namespace vellmark
