#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace vellmark {

/// One thing that a program sends to its terminal, by ECMA-48.
struct TerminalEvent {
    enum class Kind {
        character,       ///< something to show
        control,         ///< a control character of ASCII
        escape,          ///< ESC and a final character, or the C1 control that stands for it
        controlSequence, ///< CSI, parameters and a final character
    };
    Kind kind = Kind::character;
    /// The character, the control character or the final character.
    char32_t code = 0;
    /// The private marker ("?", "<", "=", ">") or the intermediate character before the final one;
    /// a sequence that has either means something else than the same without.
    char32_t marker = 0;
    /// The first parameters of a control sequence; one that was left out is 0.
    std::array<std::uint32_t, 4> parameters{};
};

/// Takes apart what a program sends to its terminal. Strings for the terminal (titles, device
/// control) and what is no sequence are left out, ill-formed UTF-8 is U+FFFD.
class TerminalSequences {
public:
    /// `output` must stay as long as this object.
    explicit TerminalSequences(std::string_view output) : output_(output) {}

    /// The next event; false at the end.
    bool next(TerminalEvent& event);

private:
    enum class State { text, escape, controlSequence, string };

    bool take(char32_t character, TerminalEvent& event);
    bool takeAfterEscape(char32_t character, TerminalEvent& event);
    bool takeInControlSequence(char32_t character, TerminalEvent& event);
    void begin(State state);

    std::string_view output_;
    std::size_t offset_ = 0;
    State state_ = State::text;
    /// The sequence that is being read.
    TerminalEvent sequence_;
    std::size_t parameter_ = 0;
};

} // namespace vellmark
