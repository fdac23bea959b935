#pragma once

#include "store/UsageState.h"

#include <optional>
#include <set>
#include <span>
#include <string>

namespace vellmark {

/// What the status item's glyph tells: the most pressing quota window of all enabled agents, as
/// its used share and the elapsed share of its time. All fields are absent when no window counts.
struct MenuBarGlyph {
    /// 0 to 100.
    std::optional<double> usedPercent;
    /// 0 to 100; absent when the window has no reset time or no positive duration.
    std::optional<double> elapsedPercent;
    std::optional<AgentProviderID> providerID;
    std::optional<std::string> windowID;

    /// Chooses the window. `snapshots` in their published order.
    static MenuBarGlyph compute(std::span<const AgentUsageSnapshot> snapshots,
                                const std::set<AgentProviderID>& enabled, Instant now);

    bool operator==(const MenuBarGlyph&) const = default;
};

/// True when the picture of `drawn` no longer does for `current`: a share appeared, went, or moved
/// by a percentage point or more. Which window is meant is no part of the picture.
bool needsRedraw(const std::optional<MenuBarGlyph>& drawn, const MenuBarGlyph& current);

} // namespace vellmark
