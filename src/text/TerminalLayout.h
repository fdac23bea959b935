#pragma once

#include <string>
#include <string_view>

namespace vellmark {

/// Functions on what a program sent to its terminal. All are linear in time and memory and take any
/// bytes. Sequences: ECMA-48 and what xterm adds (its "Control Sequences" document).

/// True when `output` does more than print line after line: goes back, moves the cursor or erases.
bool movesCursor(std::string_view output);

/// All that `output` ever showed, in the order in which it came, as UTF-8: `stripANSI(output)`
/// where no cursor moves; else a jump to another place begins a new line, one to the right or to a
/// column is a blank.
std::string drawnText(std::string_view output);

/// What stands on the terminal after `output`, its lines from the top, as UTF-8. The terminal has
/// any height and width, so that no line is lost or broken; sequences that address the screen
/// (cursor to row 1) mean the 24 lowest rows, the size that programs assume when nobody tells them.
/// A line feed begins a new line, as terminals are set for programs.
///
/// For output that moves no cursor this is `stripANSI(output)`. The result is empty if the cursor
/// covers more places than the output's length justifies, by thousands of long jumps.
std::string laidOutText(std::string_view output);

} // namespace vellmark
