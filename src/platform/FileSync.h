#pragma once

namespace vellmark {

/// Waits until what was written to the file or folder would survive a power loss, as far as its
/// disk keeps its word. False, with the reason in `errno`, where that cannot be had.
bool syncFile(int descriptor);

} // namespace vellmark
