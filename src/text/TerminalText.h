#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vellmark {

/// Functions on the text that other programs print. All of them are linear and take any bytes;
/// ill-formed UTF-8 passes through where nothing else is said.

/// Removes terminal control sequences (operating-system commands, control sequences, character-set
/// selections) and leaves everything else as it is. Text that is not well-formed goes through
/// `repairedUTF8` first: a command with a stray byte in it is not recognised.
std::string stripANSI(std::string_view text);

/// The non-empty lines of `text`, split at every kind of line break (LF, CR, VT, FF, NEL, line and
/// paragraph separator), not trimmed. The views point into `text`.
std::vector<std::string_view> nonEmptyLines(std::string_view text);

/// `text` without Unicode white space and line breaks at its ends.
std::string_view trimmed(std::string_view text);

/// True when `text` is well-formed UTF-8.
bool isValidUTF8(std::string_view text);

/// `text` with every ill-formed sequence replaced by U+FFFD.
std::string repairedUTF8(std::string_view text);

/// The first / last `count` characters as the user perceives them (grapheme clusters).
std::string firstCharacters(std::string_view text, std::size_t count);
std::string lastCharacters(std::string_view text, std::size_t count);

/// One line that is safe to print and to log: terminal sequences go, a line break or a tab becomes
/// a blank, other control characters and those that turn the writing direction go, ill-formed bytes
/// are replaced.
std::string singleLine(std::string_view text);

/// `text` with every occurrence of `what`, which is not empty, replaced as it stands.
std::string replacedText(std::string_view text, std::string_view what,
                         std::string_view replacement);

/// Lower-cased by Unicode's rules, independent of any language.
std::string lowercased(std::string_view text);

} // namespace vellmark
