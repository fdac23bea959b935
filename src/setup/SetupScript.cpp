#include "setup/SetupScript.h"

#include "text/TerminalText.h"

#include <algorithm>
#include <initializer_list>
#include <sstream>

namespace vellmark {
namespace {

/// An install command of the form "curl -fsSL URL | bash".
struct PipedDownload {
    std::string option;
    std::string url;
    std::string shell;
};

bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

std::optional<PipedDownload> pipedDownload(const std::string& command) {
    const auto bar = command.find('|');
    if (bar == std::string::npos || command.find('|', bar + 1) != std::string::npos) {
        return std::nullopt;
    }
    std::istringstream left(command.substr(0, bar));
    std::string program;
    PipedDownload download;
    std::string surplus;
    left >> program >> download.option >> download.url;
    const bool threeWords = !download.url.empty() && !(left >> surplus);
    const bool plainOption =
        download.option.starts_with('-') &&
        std::all_of(download.option.begin() + 1, download.option.end(), isLetter);
    download.shell = trimmed(std::string_view(command).substr(bar + 1));
    if (program != "curl" || !threeWords || !plainOption || download.shell.empty()) {
        return std::nullopt;
    }
    return download;
}

class ScriptLines {
public:
    void add(std::string_view line) { text_.append(line).append("\n"); }
    void add(std::initializer_list<std::string_view> lines) {
        for (const auto line : lines) {
            add(line);
        }
    }
    void echo(std::string_view text, std::string_view indent = "") {
        add(std::string(indent) + "echo " + shellQuoted(text));
    }
    std::string take() {
        text_.pop_back();
        return std::move(text_);
    }

private:
    std::string text_;
};

std::string quotedWords(const std::vector<std::string>& words) {
    std::string result;
    for (const auto& word : words) {
        result += (result.empty() ? "" : " ") + shellQuoted(word);
    }
    return result;
}

void addOpening(ScriptLines& lines, const SetupScriptPlan& plan, const SetupScriptTexts& texts) {
    lines.add({"#!/bin/zsh", R"(ORIGINAL_PATH="$PATH")",
               R"(export PATH="$HOME/.local/bin:/opt/homebrew/bin:/usr/local/bin:$PATH")",
               "clear"});
    lines.echo(texts.title);
    lines.add("echo");
    lines.echo(texts.shownCommandLabel);
    lines.echo("  " + plan.command);
    lines.add("echo");
}

// The installer is downloaded to a file first, so that a failed download is told apart from a
// failed installation.
void addInstall(ScriptLines& lines, const std::string& command, const SetupScriptTexts& texts) {
    const auto download = pipedDownload(command);
    if (!download) {
        lines.add({command, "rc=$?"});
        return;
    }
    lines.add(R"sh(INSTALL_FILE="$(mktemp "${TMPDIR:-/tmp}/vellmark-install.XXXXXX")")sh");
    lines.add("curl " + download->option + " " + shellQuoted(download->url) +
              R"( -o "$INSTALL_FILE")");
    lines.add({"rc=$?", R"(if [ "$rc" -ne 0 ]; then)"});
    lines.echo(texts.downloadFailedText, "  ");
    lines.add("else");
    lines.add("  " + download->shell + R"( "$INSTALL_FILE")");
    lines.add({"  rc=$?", "fi", R"(rm -f "$INSTALL_FILE")"});
}

// A CLI that does not know its login subcommand is started bare, which leads into its own login.
std::string loginLine(const SetupScriptPlan& plan) {
    const auto arguments = quotedWords(plan.loginArguments);
    const std::string login = R"("$TOOL")" + (arguments.empty() ? "" : " " + arguments);
    if (plan.loginArguments.empty() || !plan.loginCheckArguments) {
        return "  " + login;
    }
    return R"(  if "$TOOL" )" + quotedWords(*plan.loginCheckArguments) + " >/dev/null 2>&1; then " +
           login + R"(; else "$TOOL"; fi)";
}

// Echo is off during the login and keys typed meanwhile are drained, so that a pasted code does not
// land in the shell afterwards.
void addLogin(ScriptLines& lines, const SetupScriptPlan& plan, const SetupScriptTexts& texts) {
    lines.add(plan.toolPath ? "TOOL=" + shellQuoted(*plan.toolPath)
                            : R"sh(TOOL="$(command -v )sh" + shellQuoted(plan.toolName) +
                                  R"sh( 2>/dev/null)")sh");
    lines.add(R"(if [ -z "$TOOL" ] || [ ! -x "$TOOL" ]; then)");
    lines.echo(texts.toolMissingText, "  ");
    lines.add({"  rc=127", "else", "  if [ -t 0 ]; then stty -echo 2>/dev/null; fi"});
    lines.add(loginLine(plan));
    lines.add({"  rc=$?", "  if [ -t 0 ]; then",
               "    while read -rs -t 0.2 -k 1 _discard 2>/dev/null; do :; done",
               "    stty echo 2>/dev/null", "  fi", "fi"});
}

// A tool that only the script's extended PATH finds is a common trap: the user gets the line that
// his own shell needs.
void addClosing(ScriptLines& lines, const SetupScriptPlan& plan, const SetupScriptTexts& texts) {
    const auto lookUp = "command -v " + shellQuoted(plan.toolName);
    lines.add({"echo", R"(if [ "$rc" -eq 0 ]; then)"});
    lines.add(R"sh(  TOOL_NOW="$()sh" + lookUp + R"sh( 2>/dev/null)")sh");
    lines.add(R"(  if [ -n "$TOOL_NOW" ] && ! PATH="$ORIGINAL_PATH" /bin/zsh -lic )" +
              shellQuoted(lookUp) + " >/dev/null 2>&1; then");
    lines.echo(texts.pathHint, "    ");
    lines.add(
        {R"sh(    echo "  export PATH=\"$(dirname "$TOOL_NOW"):\$PATH\"")sh", "    echo", "  fi"});
    lines.echo(texts.doneText, "  ");
    lines.add("else");
    lines.echo(texts.failedText, "  ");
    lines.add({R"sh(  echo "(exit code $rc)")sh", "fi", R"(exit "$rc")"});
}

} // namespace

SetupScriptPlan SetupScriptPlan::install(const CLISetupInfo& info, bool alternative) {
    SetupScriptPlan plan;
    plan.kind = Kind::install;
    plan.command = alternative ? info.installAlternative : info.installCommand;
    plan.toolName = info.toolName;
    plan.loginArguments = info.loginArguments;
    plan.loginCheckArguments = info.loginCheckArguments;
    return plan;
}

SetupScriptPlan SetupScriptPlan::login(const CLISetupInfo& info,
                                       std::optional<std::string> toolPath) {
    auto plan = install(info, false);
    plan.kind = Kind::login;
    plan.command = info.loginCommand;
    plan.toolPath = std::move(toolPath);
    return plan;
}

SetupScriptTexts SetupScriptTexts::localized(const Localization& words) {
    return {words.text("setup.script.title"),          words.text("setup.script.shown"),
            words.text("setup.script.done"),           words.text("setup.script.failed"),
            words.text("setup.script.downloadFailed"), words.text("setup.script.pathHint"),
            words.text("setup.script.toolMissing")};
}

std::string setupScript(const SetupScriptPlan& plan, const SetupScriptTexts& texts) {
    ScriptLines lines;
    addOpening(lines, plan, texts);
    if (plan.kind == SetupScriptPlan::Kind::install) {
        addInstall(lines, plan.command, texts);
    } else {
        addLogin(lines, plan, texts);
    }
    addClosing(lines, plan, texts);
    return lines.take();
}

std::string shellQuoted(std::string_view text) {
    std::string result = "'";
    for (const char c : text) {
        if (c == '\'') {
            result += R"('\'')";
        } else {
            result += c;
        }
    }
    return result + "'";
}

} // namespace vellmark
