#pragma once

namespace vellmark {

/// Gives back to the system the freed heap memory that a start, or a window that has been closed,
/// leaves resident. Takes about a millisecond.
void releaseUnusedMemory();

/// For the start of a program that runs for days: freed heap memory beyond a few hundred kilobytes
/// goes back at once, on whichever thread it was used.
void keepLittleUnusedMemory();

} // namespace vellmark
