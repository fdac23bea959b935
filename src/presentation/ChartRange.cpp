#include "presentation/ChartRange.h"

#include <algorithm>

namespace vellmark {

namespace {

struct RangeFacts {
    ChartRange range;
    Seconds length;
    std::string_view stored;
    std::string_view key;
    std::string_view longKey;
};

constexpr std::array allFacts{
    RangeFacts{ChartRange::day, oneDay, "24h", "chart.range.day", "chart.range.day.long"},
    RangeFacts{ChartRange::week, 7 * oneDay, "7d", "chart.range.week", "chart.range.week.long"},
    RangeFacts{ChartRange::month, 30 * oneDay, "30d", "chart.range.month",
               "chart.range.month.long"},
    RangeFacts{ChartRange::quarter, 90 * oneDay, "90d", "chart.range.quarter",
               "chart.range.quarter.long"},
    RangeFacts{ChartRange::year, 365 * oneDay, "1y", "chart.range.year", "chart.range.year.long"},
};

const RangeFacts& factsOf(ChartRange range) {
    return allFacts[static_cast<std::size_t>(range)];
}

} // namespace

Seconds length(ChartRange range) {
    return factsOf(range).length;
}

std::string_view storedText(ChartRange range) {
    return factsOf(range).stored;
}

std::optional<ChartRange> chartRange(std::string_view stored) {
    const auto found = std::ranges::find(allFacts, stored, &RangeFacts::stored);
    return found != allFacts.end() ? std::optional(found->range) : std::nullopt;
}

std::string rangeText(ChartRange range, const Localization& words) {
    return words.text(factsOf(range).key);
}

std::string longRangeText(ChartRange range, const Localization& words) {
    return words.text(factsOf(range).longKey);
}

} // namespace vellmark
