#pragma once

namespace vellmark {

/// The key that is held for the program's shortcuts.
enum class CommandKey { control, command };

/// The one of this system.
CommandKey commandKey();

} // namespace vellmark
