#include "app/ToolkitTexts.h"

#include <QFile>
#include <QLibraryInfo>
#include <gtest/gtest.h>

namespace vellmark::tests {

TEST(ToolkitTexts, TheFileDialogSpeaksTheLanguageOfTheApplication) {
    if (!QFile::exists(QLibraryInfo::path(QLibraryInfo::TranslationsPath) + "/qtbase_fr.qm")) {
        GTEST_SKIP() << "the toolkit's translations are not installed";
    }
    ToolkitTexts texts;
    texts.setWords(Localization("de"));
    EXPECT_EQ(texts.translate("QFileDialog", "Look in:", nullptr, -1), "Suchen in:");
    texts.setWords(Localization("fr"));
    // The space before the colon is a no-break one in newer translations.
    EXPECT_EQ(texts.translate("QFileDialog", "File &name:", nullptr, -1).simplified(),
              "&Nom de fichier :");
    // Ours come first.
    EXPECT_EQ(texts.translate("QPlatformTheme", "Cancel", nullptr, -1), "Annuler");
}

} // namespace vellmark::tests
