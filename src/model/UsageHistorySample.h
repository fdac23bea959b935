#pragma once

#include "model/AgentProviderID.h"
#include "text/Instant.h"

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace vellmark {

/// A universally unique identifier, written in its canonical upper-case form of 36 characters.
struct UUID {
    std::array<std::uint8_t, 16> bytes{};
    /// A fresh random one (version 4).
    static UUID make();
    /// Absent when `text` is not of the canonical form (either case is accepted).
    static std::optional<UUID> parse(std::string_view text);
    std::string text() const;
    bool operator==(const UUID&) const = default;
};

/// One recorded point of usage history. History is grouped by (`provider`, `windowID`).
struct UsageHistorySample {
    UUID id;
    AgentProviderID provider;
    std::string windowID;
    Instant capturedAt{};
    /// 0 to 100, as in UsageWindow.
    double usedPercent = 0;
    std::optional<Instant> resetsAt;

    bool operator==(const UsageHistorySample&) const = default;
};

} // namespace vellmark

template<>
struct std::hash<vellmark::UsageHistorySample> {
    std::size_t operator()(const vellmark::UsageHistorySample& sample) const noexcept;
};
