#include "setup/SetupScript.h"

#include <gtest/gtest.h>

namespace vellmark {
namespace {

SetupScriptTexts plainTexts() {
    return {"Title", "Shown:", "Done.", "Failed.", "No download.", "Hint:", "No tool."};
}

TEST(SetupScript, RunsAnyOtherInstallCommandAsItStands) {
    CLISetupInfo info;
    for (const char* command :
         {"brew install --cask tool", "curl -fsSL https://example.org/install.sh",
          "curl -fsSL https://example.org/x | bash | tee log",
          "curl -o1 https://example.org/x | sh", "curl -fsSL --retry https://example.org/x | sh",
          "wget -q https://example.org/x | sh"}) {
        info.installCommand = command;
        const auto script = setupScript(SetupScriptPlan::install(info, false), plainTexts());
        EXPECT_NE(script.find("\necho\n" + std::string(command) + "\nrc=$?\n"), std::string::npos)
            << command;
        EXPECT_EQ(script.find("INSTALL_FILE"), std::string::npos) << command;
    }
}

// zsh's echo reads backslashes, and a leading dash as an option, even when they are quoted.
TEST(SetupScript, CatalogTextsAreSafeForEcho) {
    for (const char* language : {"de", "en"}) {
        const auto texts = SetupScriptTexts::localized(Localization(language));
        for (const auto& text :
             {texts.title, texts.shownCommandLabel, texts.doneText, texts.failedText,
              texts.downloadFailedText, texts.pathHint, texts.toolMissingText}) {
            EXPECT_EQ(text.find('\\'), std::string::npos) << text;
            EXPECT_FALSE(text.starts_with('-')) << text;
            EXPECT_FALSE(text.starts_with("setup.")) << text << " has no translation";
        }
    }
}

} // namespace
} // namespace vellmark
