#include "presentation/UsageRowContent.h"

#include "model/UsageRules.h"
#include "model/UsageTexts.h"
#include "text/Formatting.h"

#include <algorithm>

namespace vellmark {
namespace {

bool isMuted(const WindowStanding& standing) {
    return standing.isOld || standing.health == UsageHealth::unavailable;
}

UsageBarContent barContent(const UsageWindow& window, const WindowStanding& standing,
                           const std::optional<double>& elapsed, FirstFigure first,
                           const Localization& words) {
    const bool isUsedFirst = first == FirstFigure::used;
    const double left = std::max(remainingPercent(window), 0.0);
    UsageBarContent bar{.filledShare =
                            std::clamp(isUsedFirst ? window.usedPercent : left, 0.0, fullPercent) /
                            fullPercent,
                        .usedShare = std::clamp(window.usedPercent, 0.0, fullPercent) / fullPercent,
                        .health = standing.health,
                        .isStale = isMuted(standing)};
    const std::string leftText = percentText(left, words);
    const std::string usedText = percentText(window.usedPercent, words);
    if (elapsed) {
        bar.paceMark = isUsedFirst ? *elapsed / fullPercent : 1 - *elapsed / fullPercent;
        bar.toolTip = words.format(isUsedFirst ? "usage.bar.help.used" : "usage.bar.help",
                                   {leftText, usedText, percentText(*elapsed, words)});
    } else {
        bar.toolTip =
            words.format(isUsedFirst ? "usage.bar.help.used.noTime" : "usage.bar.help.noTime",
                         {leftText, usedText});
    }
    return bar;
}

std::string resetLine(const UsageWindow& window, const WindowStanding& standing, Instant now,
                      const Localization& words) {
    using Kind = WindowStanding::Kind;
    // What is used up stays so, however old the figures are, and what is due is not confirmed.
    if (standing.kind == Kind::usedUp) {
        return usedUpText(window, now, words);
    }
    if (standing.kind == Kind::due) {
        return resetText(window, now, words);
    }
    std::string line = standing.kind == Kind::held ? waitingText(*standing.holder, words)
                       : window.resetsAt           ? resetText(window, now, words)
                                                   : words.text("popover.reset.unknown");
    if (!window.readAt || !standing.isOld || *window.readAt >= now) {
        return line;
    }
    // Beside the age there is no room for a span.
    if (standing.kind == Kind::counts && window.resetsAt) {
        line = words.format("usage.reset.at", {instantText(*window.resetsAt, now, words)});
    }
    return line + " · " +
           words.format("usage.stale", {roughDurationText(now - *window.readAt, words)});
}

/// Planning and forecast: of a window that counts.
void addOutlook(UsageRowContent& row, const UsageWindow& window, const WindowStanding& standing,
                std::span<const UsagePoint> recent, Instant now, const Localization& words) {
    if (const std::optional<Planning> plan = planning(window, standing.judgedAt)) {
        row.planning = planningText(*plan, words);
    }
    const std::optional<Forecast> outlook = forecast(window, standing.judgedAt, recent);
    if (!outlook) {
        return;
    }
    row.outlook = forecastText(*outlook, window, now, words);
    // A quota that runs out before its reset gets a line; `healthy` windows miss it by a little.
    if (outlook->emptyAt) {
        row.forecast =
            ForecastLineContent{.text = row.outlook,
                                .briefText = forecastText(*outlook, window, now, words, true),
                                .tone = standing.health};
    }
}

} // namespace

std::string usageFigureText(const UsageWindow& window, FirstFigure first,
                            const Localization& words) {
    return percentText(first == FirstFigure::used ? window.usedPercent
                                                  : std::max(remainingPercent(window), 0.0),
                       words);
}

std::string usageValueText(const UsageWindow& window, FirstFigure first,
                           const Localization& words) {
    return words.format(first == FirstFigure::used ? "usage.used" : "usage.remaining",
                        {usageFigureText(window, first, words)});
}

UsageRowContent usageRowContent(const UsageWindow& window, const WindowStanding& standing,
                                std::span<const UsagePoint> recent, FirstFigure first, Instant now,
                                const Localization& words) {
    using Kind = WindowStanding::Kind;
    const std::optional<double> elapsed = elapsedPercent(window, standing.judgedAt);
    UsageRowContent row{
        .windowID = window.id,
        .label = windowLabel(window, words, true),
        .fullLabel = windowLabel(window, words),
        .value = usageValueText(window, first, words),
        .figure = usageFigureText(window, first, words),
        .figureWord =
            words.text(first == FirstFigure::used ? "usage.used.word" : "usage.remaining.word"),
        .bar = barContent(window, standing, elapsed, first, words),
        .reset = resetLine(window, standing, now, words),
        .isUsedUp = standing.kind == Kind::usedUp,
        .isMuted = isMuted(standing)};
    if (elapsed) {
        row.elapsed = words.format("usage.elapsed", {percentText(*elapsed, words)});
    }
    if (standing.kind == Kind::counts) {
        addOutlook(row, window, standing, recent, now, words);
    }
    row.accessibilityText = words.format("usage.accessibility",
                                         {row.fullLabel, percentText(window.usedPercent, words)});
    row.accessibilityDetail = row.reset;
    if (row.forecast) {
        row.accessibilityDetail += ". " + row.forecast->text;
    }
    return row;
}

} // namespace vellmark
