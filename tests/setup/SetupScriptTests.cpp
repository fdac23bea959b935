#include "process/BoundedProcess.h"
#include "setup/SetupScript.h"
#include "support/TemporaryDirectory.h"

#include <gmock/gmock.h>

namespace vellmark {
namespace {

using std::filesystem::path;
using testing::HasSubstr;
using testing::Not;

/// A throw-away home in which generated scripts run with the real zsh and made-up tools.
class SetupScriptRun : public testing::Test {
protected:
    void SetUp() override {
        if (!std::filesystem::exists("/bin/zsh")) {
            GTEST_SKIP() << "/bin/zsh is not installed";
        }
        std::filesystem::create_directories(bin());
        std::filesystem::create_directories(temporary());
        tests::writeFile(home() / ".zshrc", ""); // without one zsh offers to write it
    }

    path home() const { return directory_.path() / "home"; }
    path bin() const { return home() / ".local" / "bin"; }
    path temporary() const { return directory_.path() / "tmp"; }

    void addTool(const path& file, const std::string& body) {
        tests::writeFile(file, "#!/bin/sh\n" + body + "\n");
        std::filesystem::permissions(file, std::filesystem::perms::owner_all);
    }
    /// A curl that "downloads" an installer with this body to the file named after -o.
    void addDownload(const std::string& installer) {
        addTool(bin() / "curl", "printf '%s\\n' '" + installer + "' > \"$4\"");
    }

    path write(const SetupScriptPlan& plan) {
        return directory_.write("script.zsh", setupScript(plan, texts_));
    }

    BoundedProcessResult run(const SetupScriptPlan& plan) { return run("/bin/zsh", {write(plan)}); }
    BoundedProcessResult run(const path& program, std::vector<std::string> arguments) {
        ChildConfiguration child;
        child.executable = program;
        child.arguments = std::move(arguments);
        child.environment = {
            {"HOME", home()}, {"TMPDIR", temporary()}, {"PATH", "/usr/bin:/bin"}, {"TERM", "dumb"}};
        child.standardOutput = ChildOutput::captured(65536);
        child.mergesStandardError = true;
        const auto result = BoundedProcess::run(child, Seconds(30), Seconds(1));
        EXPECT_FALSE(result.timedOut);
        EXPECT_TRUE(std::filesystem::is_empty(temporary())) << "an installer was left behind";
        return result;
    }

    static CLISetupInfo toolInfo() {
        CLISetupInfo info;
        info.installCommand = "curl -fsSL https://example.org/install.sh | sh";
        info.toolName = "tool";
        info.loginCommand = "tool login";
        info.loginArguments = {"login"};
        info.loginCheckArguments = {{"login", "--help"}};
        return info;
    }

    const SetupScriptTexts texts_{
        "l'agent \"$HOME\" `id`", "SHOWN", "DONE", "FAILED", "NO-DOWNLOAD", "HINT", "NO-TOOL"};
    tests::TemporaryDirectory directory_;
};

TEST_F(SetupScriptRun, FailuresAreToldApartAndKeepTheirStatus) {
    addTool(bin() / "curl", "exit 22");
    const auto download = run(SetupScriptPlan::install(toolInfo(), false));
    EXPECT_EQ(download.terminationStatus, 22);
    EXPECT_THAT(download.output, HasSubstr("NO-DOWNLOAD\n\nFAILED\n(exit code 22)\n"));

    addDownload("exit 3");
    const auto installer = run(SetupScriptPlan::install(toolInfo(), false));
    EXPECT_EQ(installer.terminationStatus, 3);
    EXPECT_THAT(installer.output, Not(HasSubstr("NO-DOWNLOAD")));
    EXPECT_THAT(installer.output, HasSubstr("FAILED\n(exit code 3)\n"));
}

TEST_F(SetupScriptRun, ToolOutsideTheUsersPathGetsTheLineToAdd) {
    addDownload("cp \"$0\" \"$HOME/.local/bin/tool\"; chmod +x \"$HOME/.local/bin/tool\"");
    const auto result = run(SetupScriptPlan::install(toolInfo(), false));
    EXPECT_EQ(result.terminationStatus, 0);
    EXPECT_THAT(result.output,
                HasSubstr("HINT\n  export PATH=\"" + bin().string() + ":$PATH\"\n\nDONE\n"));

    tests::writeFile(home() / ".zshrc", "path+=(~/.local/bin)\n");
    EXPECT_THAT(run(SetupScriptPlan::install(toolInfo(), false)).output, Not(HasSubstr("HINT")));
}

TEST_F(SetupScriptRun, TextsAndArgumentsNeverBecomeCommands) {
    auto info = toolInfo();
    const auto odd = bin() / "a 'tool' $(touch hit)`touch hit`";
    addTool(odd, "printf '<%s>' \"$@\"");
    info.loginArguments = {"it's", "$(touch hit)", "`touch hit`", "a\nb"};
    info.loginCheckArguments.reset();
    const auto result = run(SetupScriptPlan::login(info, odd.string()));
    EXPECT_EQ(result.terminationStatus, 0);
    EXPECT_THAT(result.output, HasSubstr("l'agent \"$HOME\" `id`\n"));
    EXPECT_THAT(result.output, HasSubstr("<it's><$(touch hit)><`touch hit`><a\nb>"));
    EXPECT_FALSE(std::filesystem::exists("hit"));
}

TEST_F(SetupScriptRun, MissingToolIsStatus127) {
    for (const auto& toolPath : {std::optional<std::string>(), std::optional<std::string>("/no")}) {
        const auto result = run(SetupScriptPlan::login(toolInfo(), toolPath));
        EXPECT_EQ(result.terminationStatus, 127);
        EXPECT_THAT(result.output, HasSubstr("NO-TOOL\n\nFAILED\n(exit code 127)\n"));
    }
}

TEST_F(SetupScriptRun, LoginSubcommandIsUsedWhereItExists) {
    addTool(bin() / "tool", "[ \"$2\" = --help ] && exit 0; echo \"called with [$*]\"");
    EXPECT_THAT(run(SetupScriptPlan::login(toolInfo(), {})).output,
                HasSubstr("called with [login]"));
    addTool(bin() / "tool", "[ \"$2\" = --help ] && exit 2; echo \"called with [$*]\"");
    EXPECT_THAT(run(SetupScriptPlan::login(toolInfo(), {})).output, HasSubstr("called with []"));
    auto bare = toolInfo();
    bare.loginArguments.clear();
    bare.loginCheckArguments.reset();
    EXPECT_THAT(run(SetupScriptPlan::login(bare, {})).output, HasSubstr("called with []"));
}

// A pasted code and stray keys must not land in the shell that the user returns to.
TEST_F(SetupScriptRun, KeysTypedDuringALoginAreDrainedAndEchoIsBack) {
    addTool(bin() / "tool", "[ \"$2\" = --help ] && exit 0; echo READY; sleep 0.5");
    const auto script = write(SetupScriptPlan::login(toolInfo(), {}));
    const std::string afterwards =
        "/bin/zsh " + script.string() + "; read -rs -t 0.3 -k 1 key && print LEFT; stty -a";
    // Types while the tool is at work, and waits for the shell's end.
    const std::string dialogue = "set timeout 60; spawn -noecho /bin/zsh -fc {" + afterwards +
                                 "}; expect READY; send \"rm -rf x\\n\"; expect eof";
    const auto result = run("/usr/bin/expect", {"-c", dialogue});
    EXPECT_THAT(result.output, Not(HasSubstr("LEFT")));
    EXPECT_THAT(result.output, Not(HasSubstr("rm -rf")));
    EXPECT_THAT(result.output, HasSubstr(" echo "));
}

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
