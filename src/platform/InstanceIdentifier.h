#pragma once

#include "platform/Machine.h"

#include <string>

namespace vellmark {

/// Names the one instance of the program that may run for a machine, as a name on the bus:
/// "app.vellmark.Vellmark" for the real one. Every sandbox has a name of its own: a demo, whose
/// sandbox is always new, runs beside the program and beside other demos.
std::string instanceIdentifier(const Machine& machine);

} // namespace vellmark
