#pragma once

#include "presentation/MenuBarGlyph.h"
#include "presentation/StatusColor.h"
#include "store/AppSettings.h"
#include "text/Localization.h"

#include <string>

namespace vellmark {

/// What the status item shows: glyph and what that is called, the colour of its dot, tooltip (also
/// the item's accessible name), and the figure beside it.
struct StatusItemContent {
    MenuBarGlyph glyph;
    std::string glyphDescription;
    StatusColorRole color = StatusColorRole::none;
    std::string toolTip;
    /// Stands beside the glyph where there is room for it: "38%". Empty for nothing.
    std::string figure;

    bool operator==(const StatusItemContent&) const = default;
};

StatusItemContent statusItemContent(const UsageState& state, Instant now, const Localization& words,
                                    StatusFigure figure = StatusFigure::none);

/// What is left, or used, of the quota that counts and of which least is left; empty without any.
std::string leastLeftFigure(const UsageState& state, Instant now, const Localization& words);

StatusColorRole statusItemColor(const UsageState& state, Instant now);

std::string statusItemToolTip(const MenuBarGlyph& glyph, const UsageState& state, Instant now,
                              const Localization& words);

} // namespace vellmark
