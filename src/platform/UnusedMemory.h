#pragma once

namespace vellmark {

/// Gives back to the system what a start, or a window that has been closed, leaves resident: freed
/// heap memory, and on Linux the mapped pages of program text. Takes about a millisecond, and as
/// long again when most of that text runs next.
void releaseUnusedMemory();

/// For the start of a program that runs for days: freed heap memory beyond a few hundred kilobytes
/// goes back at once, on whichever thread it was used.
void keepLittleUnusedMemory();

} // namespace vellmark
