#include "probes/BoundedProcess.h"
#include "setup/SetupScript.h"
#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

namespace vellmark {
namespace {

using std::filesystem::path;

/// A throw-away home in which generated scripts run with the real zsh and made-up tools.
class SetupScriptRun : public testing::Test {
protected:
    void SetUp() override {
        if (!std::filesystem::exists("/bin/zsh")) {
            GTEST_SKIP() << "/bin/zsh is not installed";
        }
        std::filesystem::create_directories(bin());
        std::filesystem::create_directories(temporary());
        std::ofstream(home() / ".zshrc").close(); // without one zsh offers to write it
    }

    path home() const { return directory_.path() / "home"; }
    path bin() const { return home() / ".local" / "bin"; }
    path temporary() const { return directory_.path() / "tmp"; }

    void addTool(const path& file, const std::string& body) {
        std::ofstream(file) << "#!/bin/sh\n" << body << "\n";
        std::filesystem::permissions(file, std::filesystem::perms::owner_all);
    }
    /// A curl that "downloads" an installer with this body to the file named after -o.
    void addDownload(const std::string& installer) {
        addTool(bin() / "curl", "printf '%s\\n' '" + installer + "' > \"$4\"");
    }

    path write(const SetupScriptPlan& plan) {
        const auto file = directory_.path() / "script.zsh";
        std::ofstream(file) << setupScript(plan, texts_);
        return file;
    }

    Environment environment() const {
        return {
            {"HOME", home()}, {"TMPDIR", temporary()}, {"PATH", "/usr/bin:/bin"}, {"TERM", "dumb"}};
    }

    BoundedProcessResult run(const SetupScriptPlan& plan) {
        ChildConfiguration child;
        child.executable = "/bin/zsh";
        child.arguments = {write(plan)};
        child.environment = environment();
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

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

TEST_F(SetupScriptRun, failedDownloadIsToldApart) {
    addTool(bin() / "curl", "exit 22");
    const auto result = run(SetupScriptPlan::install(toolInfo(), false));
    EXPECT_EQ(result.terminationStatus, 22);
    EXPECT_TRUE(contains(result.output, "NO-DOWNLOAD\n\nFAILED\n(exit code 22)\n"))
        << result.output;
}

TEST_F(SetupScriptRun, failedInstallerKeepsItsStatus) {
    addDownload("exit 3");
    const auto result = run(SetupScriptPlan::install(toolInfo(), false));
    EXPECT_EQ(result.terminationStatus, 3);
    EXPECT_FALSE(contains(result.output, "NO-DOWNLOAD"));
    EXPECT_TRUE(contains(result.output, "FAILED\n(exit code 3)\n")) << result.output;
}

TEST_F(SetupScriptRun, toolOutsideTheUsersPathGetsTheLineToAdd) {
    addDownload("cp \"$0\" \"$HOME/.local/bin/tool\"; chmod +x \"$HOME/.local/bin/tool\"");
    const auto result = run(SetupScriptPlan::install(toolInfo(), false));
    EXPECT_EQ(result.terminationStatus, 0);
    EXPECT_TRUE(
        contains(result.output, "HINT\n  export PATH=\"" + bin().string() + ":$PATH\"\n\nDONE\n"))
        << result.output;

    std::ofstream(home() / ".zshrc") << "path+=(~/.local/bin)\n";
    EXPECT_FALSE(contains(run(SetupScriptPlan::install(toolInfo(), false)).output, "HINT"));
}

TEST_F(SetupScriptRun, textsAndArgumentsNeverBecomeCommands) {
    auto info = toolInfo();
    const auto odd = bin() / "a 'tool' $(touch hit)`touch hit`";
    addTool(odd, "printf '<%s>' \"$@\"");
    info.loginArguments = {"it's", "$(touch hit)", "`touch hit`", "a\nb"};
    info.loginCheckArguments.reset();
    const auto result = run(SetupScriptPlan::login(info, odd.string()));
    EXPECT_EQ(result.terminationStatus, 0);
    EXPECT_TRUE(contains(result.output, "l'agent \"$HOME\" `id`\n")) << result.output;
    EXPECT_TRUE(contains(result.output, "<it's><$(touch hit)><`touch hit`><a\nb>"))
        << result.output;
    EXPECT_FALSE(std::filesystem::exists("hit"));
}

TEST_F(SetupScriptRun, missingToolIsStatus127) {
    for (const auto& toolPath : {std::optional<std::string>(), std::optional<std::string>("/no")}) {
        const auto result = run(SetupScriptPlan::login(toolInfo(), toolPath));
        EXPECT_EQ(result.terminationStatus, 127);
        EXPECT_TRUE(contains(result.output, "NO-TOOL\n\nFAILED\n(exit code 127)\n"));
    }
}

TEST_F(SetupScriptRun, loginSubcommandIsUsedWhereItExists) {
    addTool(bin() / "tool", "[ \"$2\" = --help ] && exit 0; echo \"called with [$*]\"");
    EXPECT_TRUE(
        contains(run(SetupScriptPlan::login(toolInfo(), {})).output, "called with [login]"));
    addTool(bin() / "tool", "[ \"$2\" = --help ] && exit 2; echo \"called with [$*]\"");
    EXPECT_TRUE(contains(run(SetupScriptPlan::login(toolInfo(), {})).output, "called with []"));
}

// A pasted code and stray keys must not land in the shell that the user returns to.
TEST_F(SetupScriptRun, keysTypedDuringALoginAreDrainedAndEchoIsBack) {
    addTool(bin() / "tool", "[ \"$2\" = --help ] && exit 0; echo READY; sleep 0.5");
    const auto script = write(SetupScriptPlan::login(toolInfo(), {}));
    const std::string afterwards =
        "/bin/zsh " + script.string() + "; read -rs -t 0.3 -k 1 key && print LEFT; stty -a";
    int terminal = -1;
    const pid_t child = forkpty(&terminal, nullptr, nullptr, nullptr);
    ASSERT_GE(child, 0);
    if (child == 0) {
        const std::string homeVariable = "HOME=" + home().string();
        const char* variables[] = {homeVariable.c_str(), "PATH=/usr/bin:/bin", "TERM=dumb",
                                   nullptr};
        const char* arguments[] = {"zsh", "-fc", afterwards.c_str(), nullptr};
        execve("/bin/zsh", const_cast<char**>(arguments), const_cast<char**>(variables));
        _exit(126);
    }
    std::string shown;
    bool typed = false;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (std::chrono::steady_clock::now() < deadline) {
        pollfd readable{terminal, POLLIN, 0};
        if (poll(&readable, 1, 500) <= 0) {
            continue;
        }
        char buffer[4096];
        const auto count = ::read(terminal, buffer, sizeof buffer);
        if (count <= 0) {
            break; // the terminal closes with its last process
        }
        shown.append(buffer, static_cast<std::size_t>(count));
        if (!typed && contains(shown, "READY")) {
            typed = true;
            ASSERT_EQ(::write(terminal, "rm -rf x\n", 9), 9);
        }
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ::close(terminal);
    EXPECT_TRUE(typed);
    EXPECT_FALSE(contains(shown, "LEFT")) << shown;
    EXPECT_FALSE(contains(shown, "rm -rf")) << shown;
    EXPECT_TRUE(contains(shown, " echo ")) << shown;
}

} // namespace
} // namespace vellmark
