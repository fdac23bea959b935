#pragma once

#include "cli/TerminalOutput.h"
#include "presentation/AgentBlockContent.h"
#include "presentation/UsageVerdict.h"

#include <string>
#include <vector>

namespace vellmark {

/// All agents in two rows at most: the verdict, then each agent with what its most pressing window
/// has left. Where the agents need both rows the verdict, which their marks tell as well, goes;
/// then the agents' names are the short ones.
std::vector<std::string> compactRows(const std::vector<AgentBlockContent>& agents,
                                     const VerdictLine& verdict, const TerminalOutput& output,
                                     const Localization& words);

} // namespace vellmark
