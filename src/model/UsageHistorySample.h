#pragma once

#include "model/AgentProviderID.h"
#include "model/UUID.h"
#include "text/Instant.h"

#include <functional>
#include <optional>
#include <string>

namespace vellmark {

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
