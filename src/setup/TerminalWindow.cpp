#include "setup/TerminalWindow.h"

#include "platform/ActivationToken.h"
#include "platform/ChildLaunch.h"
#include "platform/ProcessTable.h"
#include "platform/WholeFile.h"
#include "process/BackgroundThread.h"
#include "setup/SetupScript.h"
#include "setup/TerminalScript.h"

#include <atomic>
#include <cerrno>
#include <charconv>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace vellmark {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view directoryPrefix = "vellmark-setup-";
constexpr const char* scriptName = "setup.zsh";
/// Terminals that open files go by the end of the name.
constexpr const char* frameName = "setup.command";
/// Of the files in which the frame leaves word.
constexpr const char* processName = "process";
constexpr const char* endName = "end";
constexpr std::size_t longestWord = 64;

/// A terminal that hands its window to another process ends at once; the window comes soon after.
constexpr Seconds windowLimit{20};

/// What runs the script and leaves word of it. Plain sh, since a zsh takes Ctrl-C in its child for
/// its own. It dies with its window at once, being the leader of its session, and the system then
/// hangs up on the script: nothing here may catch SIGHUP. A second window that comes late ends at
/// once: the first word is a directory, which can be made once only. The environment may be that of
/// a terminal that ran before, so the variables that make a sandbox are named.
std::string frameScript(const fs::path& directory, const fs::path& shell, const Machine& machine,
                        const SetupWindowTexts& texts, bool waits) {
    std::string lines = "#!/bin/sh\ndirectory=" + shellQuoted(directory.string()) +
                        "\nmkdir \"$directory/begun\" 2>/dev/null || exit 0\n";
    if (machine.isSandbox()) {
        lines += "export HOME=" + shellQuoted(machine.home.string()) +
                 " TMPDIR=" + shellQuoted(machine.temporary.string()) + "\n";
    }
    lines += "trap : INT QUIT\n"
             "echo $$ >\"$directory/process\"\n"
             "cd \"$HOME\" || cd /\n" +
             shellQuoted(shell.string()) +
             " \"$directory/setup.zsh\"\n"
             "status=$?\n"
             "trap - INT QUIT\n"
             "{ echo \"$status\" >\"$directory/end\"; } 2>/dev/null\n";
    if (waits) {
        lines += "echo\nprintf '%s\\n' " + shellQuoted(texts.close) + "\nread -r line\n";
    }
    return lines + "exit \"$status\"\n";
}

/// Of a terminal that runs on its own; the number of the signal and 128 where one ended it.
class TerminalEnd {
public:
    /// A terminal may stay open for days. Somebody has to collect it then, and nobody may wait.
    static std::shared_ptr<TerminalEnd> of(pid_t terminal) {
        auto end = std::make_shared<TerminalEnd>();
        startBackgroundThread([end, terminal] {
            int status = 0;
            pid_t collected = 0;
            while ((collected = ::waitpid(terminal, &status, 0)) < 0 && errno == EINTR) {
            }
            const bool isKnown = collected == terminal;
            end->status_ = !isKnown            ? 0
                           : WIFEXITED(status) ? WEXITSTATUS(status)
                                               : 128 + WTERMSIG(status);
        });
        return end;
    }
    bool hasFailed() const { return status_ > 0; }
    bool hasEnded() const { return status_ >= 0; }

private:
    std::atomic<int> status_ = -1;
};

/// One line that is complete; absent otherwise.
std::optional<std::string> wordIn(const fs::path& file) {
    std::error_code ignored;
    auto word = readRegularFile(file, longestWord, ignored);
    if (!word || !word->ends_with('\n')) {
        return std::nullopt;
    }
    word->pop_back();
    return word;
}

std::optional<int> numberIn(const std::string& word) {
    int number = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    const bool isWhole = error == std::errc() && end == word.data() + word.size();
    return isWhole ? std::optional(number) : std::nullopt;
}

class ShownScript final : public SetupRun {
public:
    ShownScript(PrivateTemporaryDirectory directory, const Machine& machine,
                std::vector<UserTerminal> terminals, Instant now)
        : directory_(std::move(directory)), environment_(environmentOf(machine)),
          home_(machine.home), terminals_(std::move(terminals)), launchedAt_(now) {}

    State look(Instant now) override {
        if (state_.stage != Stage::opening && state_.stage != Stage::running) {
            return state_;
        }
        const bool wasAlive = isScriptAlive();
        // Asked in this order: a script that ends in between has left word.
        if (const auto word = wordIn(directory_.path() / endName)) {
            state_ = endFrom(*word);
        } else if (process_) {
            state_.stage = wasAlive ? Stage::running : Stage::closed;
        } else if (hasBegun()) {
            state_.stage = Stage::running;
        } else {
            lookAtTerminal(now);
        }
        return state_;
    }

    /// Throws when none is left.
    void launchNext(Instant now) {
        std::system_error failure(ENOENT, std::generic_category(), "terminal");
        while (next_ < terminals_.size()) {
            const UserTerminal& terminal = terminals_[next_++];
            try {
                end_ = TerminalEnd::of(launchChild(launchOf(terminal)));
                launchedAt_ = now;
                return;
            } catch (const std::system_error& error) {
                failure = error;
            }
        }
        throw failure;
    }

private:
    static std::vector<std::string> environmentOf(const Machine& machine) {
        std::vector<std::string> variables;
        for (const auto& [name, value] : withoutActivationToken(machine.environment)) {
            variables.push_back(name + "=" + value);
        }
        return variables;
    }

    static State endFrom(const std::string& word) {
        const auto status = numberIn(word);
        return status ? State{Stage::ended, *status} : State{Stage::closed, 0};
    }

    ChildLaunch launchOf(const UserTerminal& terminal) const {
        ChildLaunch launch;
        launch.program = terminal.program;
        launch.arguments = terminal.arguments;
        if (!terminal.opensFile) {
            launch.arguments.emplace_back("/bin/sh");
        }
        launch.arguments.push_back((directory_.path() / frameName).string());
        launch.environment = environment_;
        launch.directory = home_;
        return launch;
    }

    bool hasBegun() const {
        std::error_code ignored;
        return fs::exists(directory_.path() / "begun", ignored);
    }

    bool isScriptAlive() {
        if (!process_) {
            const auto word = wordIn(directory_.path() / processName);
            const auto number = word ? numberIn(*word) : std::nullopt;
            if (!number) {
                return false;
            }
            process_.emplace(ProcessHandle::open(*number));
        }
        return *process_ && (*process_)->isAlive();
    }

    void lookAtTerminal(Instant now) {
        if (end_->hasFailed()) {
            try {
                launchNext(now);
            } catch (const std::system_error&) {
                state_.stage = Stage::noWindow;
            }
        } else if (end_->hasEnded() && now - launchedAt_ > windowLimit) {
            state_.stage = Stage::noWindow;
        }
    }

    PrivateTemporaryDirectory directory_;
    std::vector<std::string> environment_;
    fs::path home_;
    std::vector<UserTerminal> terminals_;
    std::size_t next_ = 0;
    std::shared_ptr<TerminalEnd> end_;
    Instant launchedAt_;
    State state_;
    /// Absent until its number is known; null inside when it had gone by then.
    std::optional<std::optional<ProcessHandle>> process_;
};

void write(const fs::path& file, const std::string& contents) {
    if (const std::error_code error = replaceWholeFile(file, contents)) {
        throw std::system_error(error, file.string());
    }
}

} // namespace

SetupMeans TerminalWindow::means(const Machine& machine) {
    return !TerminalScript::shell()         ? SetupMeans::noShell
           : userTerminals(machine).empty() ? SetupMeans::noTerminal
                                            : SetupMeans::available;
}

std::unique_ptr<SetupRun> TerminalWindow::open(const Machine& machine, const std::string& script,
                                               const SetupWindowTexts& texts, Instant now) {
    return open(machine, script, texts, now, userTerminals(machine));
}

std::unique_ptr<SetupRun> TerminalWindow::open(const Machine& machine, const std::string& script,
                                               const SetupWindowTexts& texts, Instant now,
                                               std::vector<UserTerminal> terminals) {
    const auto shell = TerminalScript::shell();
    if (!shell) {
        throw std::system_error(ENOENT, std::generic_category(), "/bin/zsh");
    }
    auto directory = PrivateTemporaryDirectory::create(machine.temporary, directoryPrefix);
    if (!directory) {
        throw std::system_error(errno, std::generic_category(), machine.temporary.string());
    }
    const bool opensFile = !terminals.empty() && terminals.front().opensFile;
    const bool closesAtEnd = terminals.empty() || terminals.front().closesAtEnd;
    const fs::path frame = directory->path() / frameName;
    write(directory->path() / scriptName, script);
    write(frame, frameScript(directory->path(), *shell, machine, texts, closesAtEnd));
    if (opensFile && ::chmod(frame.c_str(), S_IRWXU) != 0) {
        throw std::system_error(errno, std::generic_category(), frame.string());
    }
    auto run =
        std::make_unique<ShownScript>(std::move(*directory), machine, std::move(terminals), now);
    run->launchNext(now);
    return run;
}

void TerminalWindow::removeAbandoned(const Machine& machine) {
    PrivateTemporaryDirectory::removeAbandoned(machine.temporary, directoryPrefix);
}

} // namespace vellmark
