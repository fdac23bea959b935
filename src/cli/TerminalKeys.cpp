#include "cli/TerminalKeys.h"

#include <array>
#include <cstddef>
#include <optional>
#include <utility>

namespace vellmark {
namespace {

using Kind = TerminalKey::Kind;

constexpr char escape = '\033';
/// Longer ones are no keys.
constexpr std::size_t longestSequence = 16;

/// What follows "ESC [" or "ESC O".
constexpr std::array<std::pair<std::string_view, Kind>, 12> sequences{{
    {"A", Kind::up},
    {"B", Kind::down},
    {"5~", Kind::pageUp},
    {"6~", Kind::pageDown},
    {"H", Kind::home},
    {"1~", Kind::home},
    {"7~", Kind::home},
    {"F", Kind::end},
    {"4~", Kind::end},
    {"8~", Kind::end},
    // With modifiers, Ctrl for instance, the arrows scroll like alone.
    {"1;5A", Kind::up},
    {"1;5B", Kind::down},
}};

std::optional<Kind> kindOf(std::string_view sequence) {
    for (const auto& [text, kind] : sequences) {
        if (sequence.substr(2) == text) {
            return kind;
        }
    }
    return std::nullopt;
}

bool isFinal(char byte) {
    return byte >= 0x40 && byte <= 0x7E;
}

} // namespace

std::vector<TerminalKey> TerminalKeys::take(std::string_view bytes) {
    std::vector<TerminalKey> keys;
    for (const char byte : bytes) {
        if (byte == escape) {
            sequence_ = byte;
        } else if (sequence_.empty()) {
            keys.push_back({Kind::character, byte});
        } else if (sequence_.size() == 1 && byte != '[' && byte != 'O') {
            // The Escape key, or Alt, before an ordinary one.
            sequence_.clear();
            keys.push_back({Kind::character, byte});
        } else {
            sequence_ += byte;
            const bool isComplete = sequence_.size() > 2 && isFinal(byte);
            if (const auto kind = isComplete ? kindOf(sequence_) : std::nullopt) {
                keys.push_back({*kind, 0});
            }
            if (isComplete || sequence_.size() > longestSequence) {
                sequence_.clear();
            }
        }
    }
    return keys;
}

} // namespace vellmark
