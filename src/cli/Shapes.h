#pragma once

#include "platform/Machine.h"

#include <array>
#include <string>
#include <string_view>

namespace vellmark {

/// The characters that pictures are drawn with. Each takes one column.
struct Shapes {
    std::string_view dot;
    /// A cell of a bar, full.
    std::string_view fill;
    /// A cell filled by one to seven eighths from the left; empty ones where the terminal has none.
    std::array<std::string_view, 7> eighths;
    std::string_view track;
    std::string_view mark;
    /// From next to nothing to everything.
    std::array<std::string_view, 8> levels;
    /// In place of what was cut off.
    std::string_view ellipsis;
    std::string_view above;
    std::string_view below;
    /// Nothing but ASCII can be shown.
    bool isPlain = false;
};

/// Block elements where the locale (LC_ALL, LC_CTYPE, LANG) is one of UTF-8, else ASCII.
const Shapes& shapesFor(const Environment& environment);

/// `text` with its dots, dashes and quotation marks in ASCII. Letters stay. An ellipsis is three
/// columns then, everything else as wide as it was.
std::string inPlainShapes(std::string_view text);

} // namespace vellmark
