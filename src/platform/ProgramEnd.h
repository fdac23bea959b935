#pragma once

namespace vellmark {

/// A thread had to be left behind in something that does not end.
void noteThreadLeftBehind();

/// Ends the program like exit(), but, when a thread was left behind, without destroying what that
/// may still be using.
[[noreturn]] void endProgram(int status);

} // namespace vellmark
