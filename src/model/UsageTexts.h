#pragma once

#include "model/AgentUsageSnapshot.h"
#include "model/UsageRules.h"
#include "text/Localization.h"

#include <string>
#include <string_view>

namespace vellmark {

/// Words for the usage values, the same in every front end.

/// The name of a window: "session", "weekly" and "fable-weekly" by their keys, "pool:…|…" by pool
/// and window, anything else as it stands. `brief` picks the pool's short name.
std::string windowLabel(std::string_view windowID, const Localization& words, bool brief = false);

std::string healthText(UsageHealth health, const Localization& words);
/// "10 points below plan", "On plan", "17 points above plan".
std::string planningText(const Planning& planning, const Localization& words);
/// "Runs out in 16 min, 70 min before reset", "Used up until the reset" when nothing is left, or
/// "Lasts until the reset"; `brief` leaves out what follows the comma.
std::string forecastText(const Forecast& forecast, const UsageWindow& window, Instant now,
                         const Localization& words, bool brief = false);
/// "Resets in 1 h 27 min · 4:15 PM", "Reset due at 2:15 PM, not confirmed" once it is past; empty
/// without a reset time.
std::string resetText(const UsageWindow& window, Instant now, const Localization& words);
/// The credit line in the agent's own words, made safe to print on one line.
std::string creditText(const CreditInfo& credit, const Localization& words);

} // namespace vellmark
