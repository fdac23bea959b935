#include "app/ToolkitTexts.h"

#include "ui/Conversions.h"

#include <QLibraryInfo>

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

constexpr std::string_view fileDialog[] = {"QFileDialog", "QFileSystemModel", "QPlatformTheme"};

} // namespace

QString ToolkitTexts::translate(const char* context, const char* sourceText,
                                const char* disambiguation, int count) const {
    const auto found = std::ranges::find_if(texts, [&](const ToolkitText& text) {
        return text.context == context && text.source == sourceText;
    });
    if (found != std::end(texts)) {
        return qString(words_.text(found->key));
    }
    return std::ranges::find(fileDialog, context) == std::end(fileDialog)
               ? QString()
               : catalog().translate(context, sourceText, disambiguation, count);
}

const QTranslator& ToolkitTexts::catalog() const {
    if (!catalog_) {
        catalog_ = std::make_unique<QTranslator>();
        // Where it is not installed it stays empty, and the toolkit's own words are shown.
        [[maybe_unused]] const bool isInstalled =
            catalog_->load("qtbase_" + qString(words_.languageCode()),
                           QLibraryInfo::path(QLibraryInfo::TranslationsPath));
    }
    return *catalog_;
}

} // namespace vellmark
