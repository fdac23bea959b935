#pragma once

#include <string>
#include <string_view>

namespace vellmark {

/// Functions on what a program sent to its terminal. All are linear in time and memory and take any
/// bytes. Sequences: ECMA-48 and what xterm adds (its "Control Sequences" document).

/// True when `output` does more than to show line after line: goes back, moves the cursor or
/// erases.
bool movesCursor(std::string_view output);

/// All that `output` ever showed, in the order in which it came, as UTF-8: `stripANSI(output)`
/// where no cursor moves; else a jump to another place begins a new line, one to the right or to a
/// column is a blank.
std::string drawnText(std::string_view output);

/// What stands on the terminal after `output`, its lines from the top, as UTF-8. The terminal is
/// one of any height and width, so that no line is lost or broken; what addresses the screen
/// (cursor to row 1) means the 24 lowest rows, the screen that a program takes for granted where
/// nobody tells it. A line feed begins a new line, as terminals are set for programs.
///
/// Output that moves no cursor is `stripANSI(output)`. Output that moves over more places than its
/// length justifies, by thousands of long jumps, is empty.
std::string laidOutText(std::string_view output);

} // namespace vellmark
