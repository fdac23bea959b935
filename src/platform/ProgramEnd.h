#pragma once

namespace vellmark {

/// Notes that a thread had to be left behind in something that does not end.
void noteThreadLeftBehind();

/// Ends the program like exit(); but if a thread was left behind, without destroying anything that
/// it may still be using.
[[noreturn]] void endProgram(int status);

} // namespace vellmark
