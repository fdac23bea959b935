#pragma once

#include "platform/Machine.h"

#include <string>

namespace vellmark {

/// The leave to take the keyboard that a desktop gives to a program that it starts: freedesktop's
/// XDG_ACTIVATION_TOKEN, or the identifier of the startup notification. Pure functions.

/// Empty where the desktop gave none.
std::string activationToken(const Environment& environment);

/// For a program that this one starts, which it would mislead.
Environment withoutActivationToken(Environment environment);

} // namespace vellmark
