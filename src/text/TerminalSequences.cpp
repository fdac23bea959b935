#include "text/TerminalSequences.h"

#include "text/Characters.h"

#include <algorithm>

namespace vellmark {

namespace {

constexpr char32_t bell = 0x07;
constexpr char32_t cancel = 0x18;
constexpr char32_t substitute = 0x1A;
constexpr char32_t escape = 0x1B;
constexpr char32_t deleted = 0x7F;

/// Far more rows or columns than a capture can fill.
constexpr std::uint32_t largestParameter = 1u << 26;

constexpr bool isIntermediate(char32_t character) {
    return character >= 0x20 && character <= 0x2F;
}

constexpr bool beginsString(char32_t character) {
    return character == 'P' || character == 'X' || character == ']' || character == '^' ||
           character == '_';
}

} // namespace

bool TerminalSequences::next(TerminalEvent& event) {
    while (offset_ < output_.size()) {
        if (take(nextCharacter(output_, offset_), event)) {
            return true;
        }
    }
    return false;
}

void TerminalSequences::begin(State state) {
    state_ = state;
    sequence_ = TerminalEvent{};
    parameter_ = 0;
}

bool TerminalSequences::take(char32_t character, TerminalEvent& event) {
    if (character == escape) {
        begin(State::escape);
        return false;
    }
    if (character == cancel || character == substitute) {
        begin(State::text);
        return false;
    }
    if (character >= 0x80 && character < 0xA0) {
        begin(State::escape);
        return takeAfterEscape(character - 0x40, event);
    }
    if (state_ == State::string) {
        if (character == bell) {
            begin(State::text);
        }
        return false;
    }
    if (character < 0x20) {
        // Inside a sequence it takes effect at once, and the sequence goes on.
        event = {TerminalEvent::Kind::control, character, 0, {}};
        return true;
    }
    switch (state_) {
    case State::escape:
        return takeAfterEscape(character, event);
    case State::controlSequence:
        return takeInControlSequence(character, event);
    default:
        break;
    }
    event.kind = TerminalEvent::Kind::character;
    event.code = character;
    return character != deleted;
}

bool TerminalSequences::takeAfterEscape(char32_t character, TerminalEvent& event) {
    if (isIntermediate(character)) {
        sequence_.marker = character;
        return false;
    }
    if (sequence_.marker == 0 && character == '[') {
        begin(State::controlSequence);
        return false;
    }
    if (sequence_.marker == 0 && beginsString(character)) {
        begin(State::string);
        return false;
    }
    state_ = State::text;
    event = {TerminalEvent::Kind::escape, character, sequence_.marker, {}};
    return character < deleted;
}

bool TerminalSequences::takeInControlSequence(char32_t character, TerminalEvent& event) {
    if (character >= '0' && character <= '9') {
        if (parameter_ < sequence_.parameters.size()) {
            std::uint32_t& value = sequence_.parameters[parameter_];
            value = std::min(value * 10 + (character - '0'), largestParameter);
        }
        return false;
    }
    if (character == ';' || character == ':') {
        ++parameter_;
        return false;
    }
    if (isIntermediate(character) || (character >= '<' && character <= '?')) {
        sequence_.marker = character;
        return false;
    }
    state_ = State::text;
    event = sequence_;
    event.kind = TerminalEvent::Kind::controlSequence;
    event.code = character;
    return character < deleted;
}

} // namespace vellmark
