#pragma once

#include "text/Localization.h"

#include <string>
#include <system_error>

namespace vellmark {

/// A reason of the system in the user's words; one that has none is quoted as the system gives it,
/// in English. Safe to use from any thread.
std::string systemErrorText(std::error_code error, const Localization& words);

} // namespace vellmark
