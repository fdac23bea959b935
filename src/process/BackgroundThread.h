#pragma once

#include <functional>

namespace vellmark {

/// Starts a thread that works until the program is gone. No signal is handled on it, so that a
/// program's handlers run where it expects them. Throws std::system_error.
void startBackgroundThread(std::function<void()> work);

} // namespace vellmark
