#pragma once

namespace vellmark {

/// Gives back to the system the freed heap memory that a start, or a window that has been closed,
/// leaves resident. Takes about a millisecond.
void releaseUnusedMemory();

} // namespace vellmark
