#pragma once

#include "text/Instant.h"

#include <functional>
#include <optional>
#include <string>

namespace vellmark {

/// One quota window of one agent, as the agent's probe reported it.
struct UsageWindow {
    /// Identifies the window within its agent: "session", "weekly", "fable-weekly", "pool:…|…",
    /// "limit:…|…".
    std::string id;
    /// Percent of the quota used, 0 to 100 (not clamped: an agent may report more).
    double usedPercent = 0;
    /// The window's length in minutes, where the agent reports it.
    std::optional<double> windowDurationMinutes;
    /// When the window's quota resets.
    std::optional<Instant> resetsAt;
    /// The agent's own name for what the window is about (a model, a further limit), where `id`
    /// alone does not tell it.
    std::optional<std::string> label = std::nullopt;
    /// When the figures were read, where that was not at the snapshot's own time: before it when
    /// the agent left the window out this time, after it when a session has told them since.
    std::optional<Instant> readAt = std::nullopt;

    bool operator==(const UsageWindow&) const = default;
};

} // namespace vellmark

template<>
struct std::hash<vellmark::UsageWindow> {
    std::size_t operator()(const vellmark::UsageWindow& window) const noexcept;
};
