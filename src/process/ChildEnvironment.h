#pragma once

#include "platform/Machine.h"

namespace vellmark {

/// The environment of an agent's child process: the machine's own without keys and without what a
/// surrounding agent session left there, PATH extended by the places where agents are installed,
/// and `extra` on top.
Environment childEnvironment(const Machine& machine, const Environment& extra = {});

} // namespace vellmark
