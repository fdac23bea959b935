// Hashing of the usage values, by their fields.

#include "model/UsageFields.h"

namespace vellmark {

namespace {

template<typename Value>
std::size_t hashOf(const Value& value) {
    return std::hash<Value>()(value);
}

std::size_t hashOf(const Instant& instant) {
    return hashOf(instant.time_since_epoch().count());
}

std::size_t hashOf(const UUID& id) {
    std::size_t result = 0;
    for (const std::uint8_t byte : id.bytes) {
        result = result * 257 + byte;
    }
    return result;
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

template<PersistedRecord Record>
std::size_t hashOfFields(const Record& record) {
    return std::apply([&](const auto&... fields) { return combinedHash(record.*fields.member...); },
                      RecordFields<Record>::all);
}

template<typename... Cases>
std::size_t hashOfCase(const std::variant<Cases...>& value) {
    return std::visit(
        [&](const auto& chosen) { return combinedHash(value.index(), hashOfFields(chosen)); },
        value);
}

} // namespace

} // namespace vellmark

using namespace vellmark;

std::size_t std::hash<UsageWindow>::operator()(const UsageWindow& window) const noexcept {
    return hashOfFields(window);
}

std::size_t std::hash<BalanceInfo>::operator()(const BalanceInfo& balance) const noexcept {
    return hashOfFields(balance);
}

std::size_t std::hash<CreditInfo>::operator()(const CreditInfo& credit) const noexcept {
    return hashOfCase(credit.value);
}

std::size_t std::hash<UsageAllowance>::operator()(const UsageAllowance& allowance) const noexcept {
    return hashOfFields(allowance);
}

std::size_t std::hash<SnapshotNote>::operator()(const SnapshotNote& note) const noexcept {
    return hashOfCase(note.value);
}

std::size_t
std::hash<UsageProviderError>::operator()(const UsageProviderError& error) const noexcept {
    return combinedHash(static_cast<int>(error.kind()), error.code(), error.texts());
}

std::size_t
std::hash<AgentUsageSnapshot>::operator()(const AgentUsageSnapshot& snapshot) const noexcept {
    return hashOfFields(snapshot);
}

std::size_t
std::hash<UsageHistorySample>::operator()(const UsageHistorySample& sample) const noexcept {
    return hashOfFields(sample);
}
