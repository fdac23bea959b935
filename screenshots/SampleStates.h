#pragma once

#include "probes/AgentFacts.h"
#include "store/UsageState.h"
#include "text/Localization.h"

namespace vellmark {

/// Made-up states of the program, the same at every run: everything happens on one afternoon.
namespace samples {

/// 20 November 2025, 14:48 in Berlin.
Instant now();
/// The words of one of the languages with its formats, in that time zone.
Localization words(const std::string& languageCode);

/// Three agents: one fine, one running low, one critical.
UsageState normal();
/// As `normal`, with a credit line: a row more than has room in the popover.
UsageState credited();
/// The first reading of two agents, none of them done.
UsageState loading();
/// As `normal`, with another reading under way.
UsageState refreshing();
/// The last reading of one agent failed; its earlier figures are shown.
UsageState stale();
/// As `stale`, after a night: every reset of the old figures is past, and nothing is known.
UsageState overdue();
/// Two agents whose figures are old: the last attempts failed.
UsageState allFailed();
/// A week that is used up, and a model's and a session that have to wait for it.
UsageState usedUp();
/// A reading that ended early: one window is from the reading before.
UsageState incomplete();
/// Two agents that could not be read at all.
UsageState failed();
UsageState noAgents();
/// As `normal`, with a history from another version, which is not written.
UsageState unwritten();
/// One agent with balances and credits, one with a credit line.
UsageState balances();
/// One agent that refuses to work, with a further limit and resets in hand.
UsageState refusing();
/// Long names of plans and windows, long reasons of failures.
UsageState longTexts();
/// More agents and windows than fit.
UsageState manyAgents();
/// Everything lasts.
UsageState healthy();
/// As `normal`; Claude was read by a session at the screen, and has a balance.
UsageState inspected();
/// The same while Claude alone is read again.
UsageState readAlone();
/// An agent with a single window, which is read by hand only.
UsageState oneWindow();

/// What is known of the CLI of an agent.
AgentFacts facts(const AgentProviderID& agent);

} // namespace samples

} // namespace vellmark
