// Identity and hashing of the usage values.

#include "model/AgentUsageSnapshot.h"
#include "model/UsageHistorySample.h"

#include <random>

namespace vellmark {

namespace {

constexpr std::string_view upperHexDigits = "0123456789ABCDEF";

/// The bytes before which the canonical form has a hyphen.
constexpr bool startsGroup(std::size_t byte) {
    return byte == 4 || byte == 6 || byte == 8 || byte == 10;
}

std::optional<std::uint8_t> hexValue(char digit) {
    if (digit >= '0' && digit <= '9') {
        return static_cast<std::uint8_t>(digit - '0');
    }
    const char upper = digit >= 'a' && digit <= 'f' ? static_cast<char>(digit - 'a' + 'A') : digit;
    if (upper >= 'A' && upper <= 'F') {
        return static_cast<std::uint8_t>(upper - 'A' + 10);
    }
    return std::nullopt;
}

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

UUID UUID::make() {
    // One generator a thread: seeding asks the system, drawing does not.
    thread_local std::mt19937_64 generator([] {
        std::random_device device;
        std::seed_seq seed{device(), device(), device(), device(),
                           device(), device(), device(), device()};
        return std::mt19937_64(seed);
    }());
    UUID result;
    for (std::size_t index = 0; index < result.bytes.size(); index += 8) {
        std::uint64_t bits = generator();
        for (std::size_t offset = 0; offset < 8; ++offset, bits >>= 8) {
            result.bytes[index + offset] = static_cast<std::uint8_t>(bits & 0xFF);
        }
    }
    // Version 4, variant 1 (RFC 9562, section 5.4).
    result.bytes[6] = static_cast<std::uint8_t>((result.bytes[6] & 0x0F) | 0x40);
    result.bytes[8] = static_cast<std::uint8_t>((result.bytes[8] & 0x3F) | 0x80);
    return result;
}

std::optional<UUID> UUID::parse(std::string_view text) {
    if (text.size() != 36) {
        return std::nullopt;
    }
    UUID result;
    std::size_t place = 0;
    for (std::size_t index = 0; index < result.bytes.size(); ++index) {
        if (startsGroup(index) && text[place++] != '-') {
            return std::nullopt;
        }
        const auto high = hexValue(text[place++]);
        const auto low = hexValue(text[place++]);
        if (!high || !low) {
            return std::nullopt;
        }
        result.bytes[index] = static_cast<std::uint8_t>(*high << 4 | *low);
    }
    return result;
}

std::string UUID::text() const {
    std::string result;
    result.reserve(36);
    for (std::size_t index = 0; index < bytes.size(); ++index) {
        if (startsGroup(index)) {
            result += '-';
        }
        result += upperHexDigits[bytes[index] >> 4];
        result += upperHexDigits[bytes[index] & 0x0F];
    }
    return result;
}

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
