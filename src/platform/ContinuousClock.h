#pragma once

#include <chrono>

namespace vellmark {

/// The time since some moment before the program started, by a clock that goes on while the system
/// sleeps and that nobody sets.
std::chrono::duration<double> continuousSeconds();

} // namespace vellmark
