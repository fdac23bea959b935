#pragma once

#include "platform/CommandKey.h"
#include "text/Localization.h"

#include <string>

namespace vellmark {

/// A key and what is held with it.
struct Shortcut {
    enum class Held {
        nothing,
        command, ///< Control, on macOS Command
        alt,     ///< Alt, on macOS Command
    };
    Held held = Held::nothing;
    std::string key;
    bool operator==(const Shortcut&) const = default;
};

/// As keyboards of the user's language name it: "Strg+R", "⌘R".
std::string shortcutText(const Shortcut& shortcut, const Localization& words,
                         CommandKey system = commandKey());

} // namespace vellmark
