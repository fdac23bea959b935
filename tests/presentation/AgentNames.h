#pragma once

#include "UsageStateMaker.h"
#include "text/Localization.h"

namespace vellmark::tests {

/// What the tests of what is shown call agents, languages and the lengths of windows.

inline const auto codex = AgentProviderID::codex();
inline const auto claude = AgentProviderID::claude();
inline const auto antigravity = AgentProviderID::antigravity();

inline const Localization english("en", "en_US", "UTC");
inline const Localization german("de", "de_DE", "UTC");

/// In minutes.
inline constexpr double fiveHours = 300;
inline constexpr double week = 7 * 24 * 60;

} // namespace vellmark::tests
