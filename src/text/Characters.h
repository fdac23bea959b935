#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vellmark {

/// The character of UTF-8 text at `offset`, which moves past it; ill-formed bytes are U+FFFD.
char32_t nextCharacter(std::string_view text, std::size_t& offset);

/// Appends a character of Unicode as UTF-8.
void appendCharacter(std::string& text, char32_t character);

/// How many columns of a terminal a character takes: wide ones two, combining marks, format and
/// control characters none.
std::size_t characterWidth(char32_t character);

} // namespace vellmark
