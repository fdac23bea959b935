#pragma once

#include "presentation/MenuBarGlyph.h"
#include "presentation/StatusColor.h"
#include "text/Localization.h"

#include <string>

namespace vellmark {

/// What the status item shows: glyph, the colour of its dot, tooltip (also its accessible name).
struct StatusItemContent {
    MenuBarGlyph glyph;
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
