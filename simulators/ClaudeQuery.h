#pragma once

#include "Scenario.h"
#include "Simulators.h"

namespace simulator {

/// Whether these are the arguments of a session without a terminal, which the query is sent to.
bool isClaudeQuery(const Arguments& arguments);

/// Plays that session: JSON messages on standard input, one a line, are answered in lines of JSON
/// until the input ends. "additions" in the scenario directory gets a line when the user's own
/// additions to the CLI would have been run.
int playClaudeQuery(const Scenario& scenario, const Arguments& arguments);

} // namespace simulator
