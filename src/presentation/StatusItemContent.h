#pragma once

#include "presentation/MenuBarGlyph.h"
#include "presentation/StatusColor.h"
#include "text/Localization.h"

#include <string>

namespace vellmark {

/// What the status item shows: glyph and what that is called, the colour of its dot, tooltip (also
/// the item's accessible name).
struct StatusItemContent {
    MenuBarGlyph glyph;
    std::string glyphDescription;
    StatusColorRole color = StatusColorRole::none;
    std::string toolTip;

    bool operator==(const StatusItemContent&) const = default;
};

StatusItemContent statusItemContent(const UsageState& state, Instant now,
                                    const Localization& words);

StatusColorRole statusItemColor(const UsageState& state, Instant now);

std::string statusItemToolTip(const MenuBarGlyph& glyph, const UsageState& state, Instant now,
                              const Localization& words);

} // namespace vellmark
