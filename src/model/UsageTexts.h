#pragma once

#include "model/AgentUsageSnapshot.h"
#include "model/UsageRules.h"
#include "text/Localization.h"

#include <string>
#include <string_view>

namespace vellmark {

/// Words for the usage values, the same in every front end.

/// The name of a window. "session" and "weekly" are called after their length where the agent tells
/// it, since plans exist whose first window is a week; "pool:…|…" and "limit:…|…" after pool or
/// limit and window; "…-weekly" after its model. `brief` picks a pool's short name, and names a
/// limit's window first.
std::string windowLabel(const UsageWindow& window, const Localization& words, bool brief = false);
/// The same for a window of which only the identifier is known.
std::string windowLabel(std::string_view windowID, const Localization& words, bool brief = false);

/// The plan under the name that people know it by; an unknown plan as the agent gave it.
std::string planText(const AgentUsageSnapshot& snapshot);

std::string healthText(UsageHealth health, const Localization& words);
/// "10 points short", "On pace", "17 points in reserve".
std::string planningText(const Planning& planning, const Localization& words);
/// "Runs out in 16 min, 70 min before reset", "Lasts until the reset", or, from old figures, "At
/// this pace, empty since 2:28 PM"; `brief` leaves out the reset.
std::string forecastText(const Forecast& forecast, const UsageWindow& window, Instant now,
                         const Localization& words, bool brief = false);
/// "Used up · back Wed 8:53 PM", as far as the reset is known.
std::string usedUpText(const UsageWindow& window, Instant now, const Localization& words);
/// "Waits for the week": shown for a window that `wider` keeps from being used.
std::string waitingText(const UsageWindow& wider, const Localization& words);
/// "Resets in 1 h 27 min · 4:15 PM", "Reset due at 2:15 PM, not confirmed" once it is past; empty
/// without a reset time.
std::string resetText(const UsageWindow& window, Instant now, const Localization& words);
/// The credit line in the agent's own words, made safe to print on one line. Those words are
/// English; the one known form ("$3.20 / $20.00 spent") is told in the user's language.
std::string creditText(const CreditInfo& credit, const Localization& words);

} // namespace vellmark
