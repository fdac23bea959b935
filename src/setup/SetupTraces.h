#pragma once

#include "platform/Machine.h"
#include "probes/ProviderRegistry.h"

#include <string>

namespace vellmark {

/// What the files tell of how far an agent is set up: a text that becomes another when its CLI
/// comes, changes or goes, and mostly when somebody logs in or out. Costs a look at a few files and
/// starts nothing, so that it can be asked every few seconds.
std::string setupTraces(const Machine& machine, const ProviderDescriptor& agent);

/// Whether Homebrew is there, which installs every agent too.
bool hasHomebrew(const Machine& machine);

} // namespace vellmark
