// Hashing of the usage values.

#include "model/AgentUsageSnapshot.h"
#include "model/UsageHistorySample.h"

namespace vellmark {

namespace {

template<typename Value>
std::size_t hashOf(const Value& value) {
    return std::hash<Value>()(value);
}

std::size_t hashOf(const Instant& instant) {
    return hashOf(instant.time_since_epoch().count());
}

template<typename Value>
std::size_t hashOf(const std::optional<Value>& value) {
    return value ? hashOf(*value) + 1 : 0;
}

template<typename Value>
std::size_t hashOf(const std::vector<Value>& values);

/// Mixes the hashes of `values` in their order.
template<typename... Values>
std::size_t combinedHash(const Values&... values) {
    std::size_t result = sizeof...(values);
    ((result ^= hashOf(values) + 0x9E3779B97F4A7C15U + (result << 6) + (result >> 2)), ...);
    return result;
}

template<typename Value>
std::size_t hashOf(const std::vector<Value>& values) {
    std::size_t result = values.size();
    for (const Value& value : values) {
        result = combinedHash(result, value);
    }
    return result;
}

} // namespace

} // namespace vellmark

using vellmark::combinedHash;
using vellmark::hashOf;

std::size_t
std::hash<vellmark::UsageWindow>::operator()(const vellmark::UsageWindow& window) const noexcept {
    return combinedHash(window.id, window.usedPercent, window.windowDurationMinutes,
                        window.resetsAt);
}

std::size_t
std::hash<vellmark::BalanceInfo>::operator()(const vellmark::BalanceInfo& balance) const noexcept {
    return combinedHash(balance.id, balance.amount, balance.currencyCode, balance.limit);
}

std::size_t
std::hash<vellmark::CreditInfo>::operator()(const vellmark::CreditInfo& credit) const noexcept {
    const auto* line = std::get_if<vellmark::CreditInfo::Line>(&credit.value);
    return line ? combinedHash(line->text) : 1;
}

std::size_t
std::hash<vellmark::SnapshotNote>::operator()(const vellmark::SnapshotNote& note) const noexcept {
    if (const auto* marker =
            std::get_if<vellmark::SnapshotNote::ClaudeEndMarkerMissing>(&note.value)) {
        return combinedHash(marker->variant);
    }
    const auto& timing = std::get<vellmark::SnapshotNote::ClaudeTiming>(note.value);
    return combinedHash(timing.waitMs, timing.startMs, timing.statusMs, timing.usageMs,
                        timing.quietMs, timing.endMs);
}

std::size_t std::hash<vellmark::UsageProviderError>::operator()(
    const vellmark::UsageProviderError& error) const noexcept {
    return combinedHash(static_cast<int>(error.kind()), error.code(), error.texts());
}

std::size_t std::hash<vellmark::AgentUsageSnapshot>::operator()(
    const vellmark::AgentUsageSnapshot& snapshot) const noexcept {
    return combinedHash(snapshot.id, snapshot.accountLabel, snapshot.plan, snapshot.windows,
                        snapshot.balances, snapshot.credit, snapshot.notes,
                        static_cast<int>(snapshot.source), snapshot.updatedAt, snapshot.error);
}

std::size_t std::hash<vellmark::UsageHistorySample>::operator()(
    const vellmark::UsageHistorySample& sample) const noexcept {
    std::size_t id = 0;
    for (const std::uint8_t byte : sample.id.bytes) {
        id = id * 257 + byte;
    }
    return combinedHash(id, sample.provider, sample.windowID, sample.capturedAt, sample.usedPercent,
                        sample.resetsAt);
}
