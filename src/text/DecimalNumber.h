#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vellmark {

/// Reads a decimal number ("42", "-1.5", ".5", "1e3") that is the whole of `text`, with a point
/// whatever the locale. Absent for anything else: blanks, hexadecimal, "inf", "nan", a number too
/// large for a double.
std::optional<double> parseDecimal(std::string_view text);

/// The shortest text of a finite number that is this number again, with a point whatever the
/// locale; "null" for any other.
std::string decimalText(double value);

} // namespace vellmark
