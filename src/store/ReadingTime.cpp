#include "store/ReadingTime.h"

namespace vellmark {

namespace {

/// Three of the usual readings in a row are missing.
constexpr Seconds newEnough(15 * 60);

} // namespace

Instant readingTimeOf(const UsageState& state, const AgentUsageSnapshot& snapshot) {
    const auto success = state.lastSuccess.find(snapshot.id);
    return success != state.lastSuccess.end() ? success->second : snapshot.updatedAt;
}

Instant readingTimeOf(const UsageState& state, const AgentUsageSnapshot& snapshot,
                      const UsageWindow& window) {
    return window.readAt.value_or(readingTimeOf(state, snapshot));
}

bool isOldReading(const UsageState& state, const AgentUsageSnapshot& snapshot, Instant now) {
    if (snapshot.source == SnapshotSource::stale || snapshot.error) {
        return true;
    }
    // Snapshots that no store has read, those of a file, are taken at their word.
    const auto success = state.lastSuccess.find(snapshot.id);
    return success != state.lastSuccess.end() && now - success->second > newEnough;
}

bool isOldReading(const UsageState& state, const AgentUsageSnapshot& snapshot,
                  const UsageWindow& window, Instant now) {
    if (window.readAt && *window.readAt >= readingTimeOf(state, snapshot)) {
        return now - *window.readAt > newEnough;
    }
    return window.readAt || isOldReading(state, snapshot, now);
}

} // namespace vellmark
