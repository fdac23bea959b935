#pragma once

#include "text/Instant.h"

#include <optional>
#include <string>

namespace vellmark {

/// One quota that the Antigravity CLI has named: a pool of models and a window.
struct AntigravityQuotaRow {
    /// As printed, trimmed ("Gemini Models").
    std::string pool;
    /// "weekly", "5h", "daily", "monthly", a cleaned free text, or "other".
    std::string windowSlug;
    std::optional<double> windowMinutes;
    /// 0 to 100.
    double remainingPercent = 0;
    std::optional<Instant> resetsAt;

    bool operator==(const AntigravityQuotaRow&) const = default;
};

} // namespace vellmark
