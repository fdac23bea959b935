#pragma once

#include "model/UsageWindow.h"
#include "presentation/AgentStanding.h"
#include "store/FirstFigure.h"
#include "text/Localization.h"

#include <optional>
#include <span>
#include <string>

namespace vellmark {

/// A bar that tells what is left, or what is used: what comes first. Shares are 0 to 1, counted
/// from the left end.
struct UsageBarContent {
    double filledShare = 0;
    /// What assistive software is told as the bar's value, in the sense of the row's
    /// `accessibilityText`.
    double usedShare = 0;
    /// Where the fill would end at an even pace; absent without a reset time.
    std::optional<double> paceMark;
    /// The colour of the fill; `unavailable` is grey.
    UsageHealth health = UsageHealth::healthy;
    /// Drawn faintly: see `UsageRowContent::isMuted`.
    bool isStale = false;
    /// Left, used and elapsed in words.
    std::string toolTip;

    bool operator==(const UsageBarContent&) const = default;
};

/// The line that says that a quota runs out before its reset.
struct ForecastLineContent {
    std::string text;
    /// For places where `text`, measured, does not fit; `text` is then the tooltip.
    std::string briefText;
    /// `attention` and `critical` carry a warning mark in their colour; `healthy` is a quiet line
    /// without mark (the reset is missed by a little).
    UsageHealth tone = UsageHealth::attention;

    bool operator==(const ForecastLineContent&) const = default;
};

/// One quota window, ready to be shown in a row, a card cell or an agent's tab.
struct UsageRowContent {
    std::string windowID;
    std::string label;
    /// The label in full where `label` is a short form.
    std::string fullLabel;
    /// "62% left" or "38% used".
    std::string value;
    /// The value in its two parts, for large figures: "62%" and "left".
    std::string figure;
    std::string figureWord;
    UsageBarContent bar;
    /// Never empty: "Resets in …", "Reset due at …, not confirmed", "Reset time unknown", "Used up
    /// · back …", "Waits for the week". With the age of a window that is older than the rest of the
    /// reading.
    std::string reset;
    /// Nothing is left: `reset` is a warning, and there is no forecast.
    bool isUsedUp = false;
    /// "10 points short"; empty without grounds.
    std::string planning;
    std::optional<ForecastLineContent> forecast;
    /// "Lasts until the reset" or the forecast's text; empty without grounds.
    std::string outlook;
    /// "71% of the time elapsed"; empty without a reset time.
    std::string elapsed;
    /// The figures are old, no longer true, or of no use for now: they are not shown brightly.
    bool isMuted = false;
    /// Name of the row or bar for assistive software; the detail is its description.
    std::string accessibilityText;
    std::string accessibilityDetail;

    bool operator==(const UsageRowContent&) const = default;
};

UsageRowContent usageRowContent(const UsageWindow& window, const WindowStanding& standing,
                                std::span<const UsagePoint> recent, FirstFigure first, Instant now,
                                const Localization& words);

/// "62%" or "38%", "62% left" or "38% used".
std::string usageFigureText(const UsageWindow& window, FirstFigure first,
                            const Localization& words);
std::string usageValueText(const UsageWindow& window, FirstFigure first, const Localization& words);

} // namespace vellmark
