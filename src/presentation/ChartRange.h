#pragma once

#include "text/Instant.h"
#include "text/Localization.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace vellmark {

/// How far a chart reaches back; the preference "ChartRange" keeps the choice.
enum class ChartRange { day, week, month, quarter, year };

inline constexpr std::array allChartRanges{ChartRange::day, ChartRange::week, ChartRange::month,
                                           ChartRange::quarter, ChartRange::year};

Seconds length(ChartRange range);

/// As the preference holds it: "24h", "7d", "30d", "90d", "1y".
std::string_view storedText(ChartRange range);
/// Absent for a text that names no range.
std::optional<ChartRange> chartRange(std::string_view stored);

/// On a switch: "24 h", "7 d" …
std::string rangeText(ChartRange range, const Localization& words);
/// In a sentence: "last 24 hours", "last 7 days" …
std::string longRangeText(ChartRange range, const Localization& words);

} // namespace vellmark
