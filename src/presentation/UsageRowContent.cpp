#include "presentation/UsageRowContent.h"

#include "model/UsageTexts.h"
#include "text/Formatting.h"

#include <algorithm>

namespace vellmark {
namespace {

constexpr double full = 100;

UsageBarContent barContent(const UsageWindow& window, bool isStale, Instant now, double left,
                           const std::optional<double>& elapsed, const Localization& words) {
    UsageBarContent bar{.filledShare = std::min(left, full) / full,
                        .usedShare = std::clamp(window.usedPercent, 0.0, full) / full,
                        .health = health(window, now),
                        .isStale = isStale};
    const std::string leftText = percentText(left, words);
    const std::string usedText = percentText(window.usedPercent, words);
    if (elapsed) {
        bar.paceMark = 1 - *elapsed / full;
        bar.toolTip =
            words.format("usage.bar.help", {leftText, usedText, percentText(*elapsed, words)});
    } else {
        bar.toolTip = words.format("usage.bar.help.noTime", {leftText, usedText});
    }
    return bar;
}

/// A quota that runs out before its reset gets a line; `healthy` windows miss it by a little.
std::optional<ForecastLineContent> forecastLine(const Forecast& outlook, const UsageWindow& window,
                                                Instant now, const Localization& words) {
    if (!outlook.emptyAt)
        return std::nullopt;
    return ForecastLineContent{.text = forecastText(outlook, window, now, words),
                               .briefText = forecastText(outlook, window, now, words, true),
                               .tone = health(window, now)};
}

} // namespace

UsageRowContent usageRowContent(const UsageWindow& window, bool isStale,
                                std::span<const UsagePoint> recent, Instant now,
                                const Localization& words) {
    const double left = std::max(remainingPercent(window), 0.0);
    const std::optional<double> elapsed = elapsedPercent(window, now);

    UsageRowContent row{.windowID = window.id,
                        .label = windowLabel(window.id, words, true),
                        .fullLabel = windowLabel(window.id, words),
                        .figure = percentText(left, words),
                        .figureWord = words.text("usage.remaining.word"),
                        .bar = barContent(window, isStale, now, left, elapsed, words),
                        .reset = resetText(window, now, words),
                        .isStale = isStale};
    row.value = words.format("usage.remaining", {row.figure});
    if (row.reset.empty())
        row.reset = words.text("popover.reset.unknown");
    if (elapsed)
        row.elapsed = words.format("usage.elapsed", {percentText(*elapsed, words)});
    if (const std::optional<Planning> plan = planning(window, now))
        row.planning = planningText(*plan, words);
    if (const std::optional<Forecast> outlook = forecast(window, now, recent)) {
        row.forecast = forecastLine(*outlook, window, now, words);
        row.outlook = forecastText(*outlook, window, now, words);
    }
    row.accessibilityText = words.format("usage.accessibility",
                                         {row.fullLabel, percentText(window.usedPercent, words)});
    row.accessibilityDetail = row.reset;
    if (row.forecast)
        row.accessibilityDetail += ". " + row.forecast->text;
    return row;
}

} // namespace vellmark
