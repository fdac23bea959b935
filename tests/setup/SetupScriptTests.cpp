#include "probes/ProviderRegistry.h"
#include "setup/SetupScript.h"

#include <gtest/gtest.h>

namespace vellmark {
namespace {

SetupScriptTexts plainTexts() {
    return {"Title", "Shown:", "Done.", "Failed.", "No download.", "Hint:", "No tool."};
}

CLISetupInfo toolInfo() {
    CLISetupInfo info;
    info.installCommand = "curl -fsSL https://example.org/install.sh | bash";
    info.installAlternative = "brew install --cask tool";
    info.loginCommand = "tool login";
    info.toolName = "tool";
    info.loginArguments = {"login"};
    info.loginCheckArguments = {{"login", "--help"}};
    return info;
}

constexpr const char* opening = R"sh(#!/bin/zsh
ORIGINAL_PATH="$PATH"
export PATH="$HOME/.local/bin:/opt/homebrew/bin:/usr/local/bin:$PATH"
clear
echo 'Title'
echo
echo 'Shown:'
)sh";

constexpr const char* closing = R"sh(
echo
if [ "$rc" -eq 0 ]; then
  TOOL_NOW="$(command -v 'tool' 2>/dev/null)"
  if [ -n "$TOOL_NOW" ] && ! PATH="$ORIGINAL_PATH" /bin/zsh -lic 'command -v '\''tool'\''' >/dev/null 2>&1; then
    echo 'Hint:'
    echo "  export PATH=\"$(dirname "$TOOL_NOW"):\$PATH\""
    echo
  fi
  echo 'Done.'
else
  echo 'Failed.'
  echo "(exit code $rc)"
fi
exit "$rc")sh";

TEST(SetupScript, DownloadsAnInstallerBeforeItRunsIt) {
    EXPECT_EQ(setupScript(SetupScriptPlan::install(toolInfo(), false), plainTexts()),
              opening + std::string(R"sh(echo '  curl -fsSL https://example.org/install.sh | bash'
echo
INSTALL_FILE="$(mktemp "${TMPDIR:-/tmp}/vellmark-install.XXXXXX")"
curl -fsSL 'https://example.org/install.sh' -o "$INSTALL_FILE"
rc=$?
if [ "$rc" -ne 0 ]; then
  echo 'No download.'
else
  bash "$INSTALL_FILE"
  rc=$?
fi
rm -f "$INSTALL_FILE")sh") +
                  closing);
}

TEST(SetupScript, LogsInWithALocatedTool) {
    EXPECT_EQ(setupScript(SetupScriptPlan::login(toolInfo(), "/my tools/tool"), plainTexts()),
              opening + std::string(R"sh(echo '  tool login'
echo
TOOL='/my tools/tool'
if [ -z "$TOOL" ] || [ ! -x "$TOOL" ]; then
  echo 'No tool.'
  rc=127
else
  if [ -t 0 ]; then stty -echo 2>/dev/null; fi
  if "$TOOL" 'login' '--help' >/dev/null 2>&1; then "$TOOL" 'login'; else "$TOOL"; fi
  rc=$?
  if [ -t 0 ]; then
    while read -rs -t 0.2 -k 1 _discard 2>/dev/null; do :; done
    stty echo 2>/dev/null
  fi
fi)sh") + closing);
}

TEST(SetupScript, RunsAnyOtherInstallCommandAsItStands) {
    auto info = toolInfo();
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

TEST(SetupScript, StartsAToolWithoutLoginSubcommandBare) {
    auto info = toolInfo();
    info.loginArguments.clear();
    info.loginCheckArguments.reset();
    const auto script = setupScript(SetupScriptPlan::login(info, std::nullopt), plainTexts());
    EXPECT_NE(script.find("\nTOOL=\"$(command -v 'tool' 2>/dev/null)\"\n"), std::string::npos);
    EXPECT_NE(script.find("\n  \"$TOOL\"\n  rc=$?\n"), std::string::npos);
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
