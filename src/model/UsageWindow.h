#pragma once

#include "text/Instant.h"

#include <functional>
#include <optional>
#include <string>

namespace vellmark {

/// One quota window of one agent, as the agent's probe reported it.
struct UsageWindow {
    /// Identifies the window within its agent: "session", "weekly", "fable-weekly", "pool:…|…".
    std::string id;
    /// Percent of the quota used, 0 to 100 (not clamped: an agent may report more).
    double usedPercent = 0;
    /// The window's length in minutes, where the agent reports it.
    std::optional<double> windowDurationMinutes;
    /// When the window's quota resets.
    std::optional<Instant> resetsAt;

    bool operator==(const UsageWindow&) const = default;
};

} // namespace vellmark

template<>
struct std::hash<vellmark::UsageWindow> {
    std::size_t operator()(const vellmark::UsageWindow& window) const noexcept;
};
