#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace vellmark {

/// Blank columns before the lines of a page, and between what stands side by side.
inline constexpr std::size_t pageIndent = 2;
inline constexpr std::size_t columnGap = 2;

/// How many columns of a terminal UTF-8 text takes: wide characters two, combining marks and
/// control characters none.
std::size_t displayWidth(std::string_view text);

/// `text` cut to at most `width` columns; what was cut off shows as `ellipsis`, of one column.
std::string cutToWidth(std::string_view text, std::size_t width, std::string_view ellipsis = "…");

enum class Alignment { left, right };

/// `text` filled with blanks to `width` columns; a longer one stays as it is.
std::string padded(std::string_view text, std::size_t width, Alignment alignment = Alignment::left);

/// `text` in lines of at most `width` columns, broken at blanks, and inside a word that is longer.
/// At least one line.
std::vector<std::string> wrapped(std::string_view text, std::size_t width);

} // namespace vellmark
