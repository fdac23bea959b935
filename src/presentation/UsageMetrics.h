#pragma once

#include "store/UsageState.h"

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vellmark {

/// A family of gauges in the OpenMetrics text format. The names and what is said of them are one
/// interface for all machines, so they are not in the user's language.
struct MetricFamily {
    std::string_view name;
    /// The end of the name, where it is a unit; may be empty.
    std::string_view unit;
    std::string_view help;
};

namespace UsageMetrics {

inline constexpr MetricFamily windowLeft{"vellmark_window_left_ratio", "ratio",
                                         "Share of the window's quota that is left."};
inline constexpr MetricFamily windowUsed{"vellmark_window_used_ratio", "ratio",
                                         "Share of the window's quota that is used."};
inline constexpr MetricFamily windowReset{"vellmark_window_reset_timestamp_seconds", "seconds",
                                          "When the window's quota resets."};

using Labels = std::vector<std::pair<std::string_view, std::string>>;

/// The lines that go before the samples of a family.
std::string head(const MetricFamily& family);
/// A sample's line. `time`: of a sample from the past.
std::string sample(const MetricFamily& family, const Labels& labels, double value,
                   std::optional<Instant> time = {});
/// What every exposition ends with.
inline constexpr std::string_view end = "# EOF\n";

/// For how long after a reading an agent counts as up.
inline constexpr Seconds upAfterReading{3'600};

/// What is known of the enabled agents, as one exposition without times of its own, which a
/// collector of text files takes as well. Of a window past its reset nobody knows what is left, so
/// it has no share then. `withAccounts`: the accounts' names too.
std::string text(const UsageState& state, Instant now, bool withAccounts);

} // namespace UsageMetrics

} // namespace vellmark
