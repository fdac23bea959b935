#pragma once

#include "store/UsageState.h"
#include "text/Localization.h"

#include <string>

namespace vellmark {

/// What is worst, in a few words: "Antigravity critical, Claude running low", or that everything
/// lasts. Without agents or before the first reading it says so.
std::string verdictText(const UsageState& state, Instant now, const Localization& words);

/// The verdict and when it was read, or how many agents have been read so far.
std::string statusLineText(const UsageState& state, Instant now, const Localization& words);

/// The overall status in one sentence, with the agents concerned, as the tooltip and the log use
/// it.
std::string overallStatusText(const UsageState& state, Instant now, const Localization& words);

/// The worst health over the enabled agents; `unavailable` without any.
UsageHealth worstHealth(const UsageState& state, Instant now);

} // namespace vellmark
