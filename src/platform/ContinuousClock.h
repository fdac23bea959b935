#pragma once

#include <chrono>

namespace vellmark {

/// The time since some moment before the program started, by a clock that keeps running while the
/// system sleeps and that nobody can set.
std::chrono::duration<double> continuousSeconds();

} // namespace vellmark
