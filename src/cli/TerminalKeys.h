#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vellmark {

/// A key of a terminal: a character, or one of those that arrive as a sequence of them.
struct TerminalKey {
    enum class Kind { character, up, down, pageUp, pageDown, home, end };
    Kind kind = Kind::character;
    char character = 0;
    bool operator==(const TerminalKey&) const = default;
};

/// Finds the keys in what a terminal sends, however it is cut into pieces. Sequences of ECMA-48 and
/// xterm; unknown ones are passed over.
class TerminalKeys {
public:
    std::vector<TerminalKey> take(std::string_view bytes);

private:
    /// An escape sequence that is not complete.
    std::string sequence_;
};

} // namespace vellmark
