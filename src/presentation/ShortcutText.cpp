#include "presentation/ShortcutText.h"

namespace vellmark {

std::string shortcutText(const Shortcut& shortcut, const Localization& words, CommandKey system) {
    if (shortcut.held == Shortcut::Held::nothing) {
        return shortcut.key;
    }
    if (system == CommandKey::command) {
        return "⌘" + shortcut.key;
    }
    const bool isAlt = shortcut.held == Shortcut::Held::alt;
    return (isAlt ? "Alt" : words.text("key.control")) + "+" + shortcut.key;
}

} // namespace vellmark
