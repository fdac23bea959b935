#include "app/ToolkitTexts.h"

#include "ui/Conversions.h"

#include <algorithm>
#include <string_view>

namespace vellmark {
namespace {

/// A text in the toolkit's sources.
struct ToolkitText {
    std::string_view context;
    std::string_view source;
    std::string_view key;
};

constexpr ToolkitText texts[] = {
    {"QLineEdit", "&Undo", "toolkit.undo"},
    {"QLineEdit", "&Redo", "toolkit.redo"},
    {"QLineEdit", "Cu&t", "toolkit.cut"},
    {"QLineEdit", "&Copy", "menu.copy"},
    {"QLineEdit", "&Paste", "toolkit.paste"},
    {"QLineEdit", "Delete", "toolkit.delete"},
    {"QLineEdit", "Select All", "menu.selectAll"},
    {"QPlatformTheme", "OK", "toolkit.ok"},
    {"QPlatformTheme", "Cancel", "settings.cancel"},
};

} // namespace

QString ToolkitTexts::translate(const char* context, const char* sourceText,
                                const char* /*disambiguation*/, int /*count*/) const {
    const auto found = std::ranges::find_if(texts, [&](const ToolkitText& text) {
        return text.context == context && text.source == sourceText;
    });
    return found == std::end(texts) ? QString() : qString(words_.text(found->key));
}

} // namespace vellmark
