#pragma once

#include "model/AgentUsageSnapshot.h"
#include "text/Instant.h"

#include <optional>
#include <vector>

namespace vellmark {

/// A figure reported by an agent that cannot be true.
struct ImplausibleFigure {
    /// Which figure of a window it was.
    enum class Kind { used, duration, reset };
    UsageWindow window;
    Kind kind = Kind::used;
};

/// Whether a recorded sample can be true: a share and a reset within the same limits.
bool isPlausibleSample(double usedPercent, std::optional<Instant> resetsAt, Instant capturedAt);

/// Removes from a reading what cannot be true, so that nothing is computed with it, and returns
/// what it removed: a window whose share is below nothing or far above everything goes, and the
/// reading counts as incomplete; a length or a reset out of any calendar's reach becomes unknown.
std::vector<ImplausibleFigure> removeImplausibleFigures(AgentUsageSnapshot& reading, Instant now);

} // namespace vellmark
