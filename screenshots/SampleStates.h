#pragma once

#include "store/UsageState.h"
#include "text/Localization.h"

namespace vellmark {

/// Made-up states of the program, the same at every run: everything happens on one afternoon.
namespace samples {

/// 20 November 2025, 14:48 in Berlin.
Instant now();
/// German or English words with their formats, in that time zone.
Localization words(const std::string& languageCode);

/// Three agents: one fine, one running low, one critical.
UsageState normal();
/// The first reading of two agents, none of them done.
UsageState loading();
/// As `normal`, with another reading under way.
UsageState refreshing();
/// The last reading of one agent failed; its earlier figures are shown.
UsageState stale();
/// Two agents that could not be read at all.
UsageState failed();
UsageState noAgents();
/// One agent with balances and credits.
UsageState balances();
/// Long names of plans and windows, long reasons of failures.
UsageState longTexts();
/// More agents and windows than fit.
UsageState manyAgents();
/// Everything lasts.
UsageState healthy();

} // namespace samples

} // namespace vellmark
