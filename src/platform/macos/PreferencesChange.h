#pragma once

#include "platform/Machine.h"

#include <string>

namespace vellmark {

/// The notification that tells every process of a change in the machine's settings.
std::string preferencesChangeName(const Machine& machine);

} // namespace vellmark
