#pragma once

#include "text/Localization.h"

#include <exception>
#include <string>
#include <string_view>
#include <system_error>

namespace vellmark {

/// A system error in the user's words; one without a translation is quoted as the system gives it,
/// in English. Safe to use from any thread.
std::string systemErrorText(std::error_code error, const Localization& words);

/// The same for a stored reason: the system's own message, possibly behind what it is about
/// ("/usr/bin/node: No such file or directory").
std::string systemReasonText(std::string_view reason, const Localization& words);

/// What ended a program, on one line: a system error with the file that it is about, and anything
/// else as it tells itself.
std::string faultText(const std::exception& fault, const Localization& words);

} // namespace vellmark
