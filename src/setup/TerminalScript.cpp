#include "setup/TerminalScript.h"

#include "platform/WholeFile.h"
#include "process/BoundedProcess.h"
#include "process/LaunchedChild.h"
#include "process/PrivateTemporaryDirectory.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <sys/wait.h>
#include <system_error>
#include <termios.h>
#include <unistd.h>

namespace vellmark {
namespace {

/// How long what an interrupted script has started may take to end.
constexpr Seconds groupGrace{1};

/// Remembers who owns the terminal and how it is set, and puts both back at the end.
class TerminalLoan {
public:
    explicit TerminalLoan(int terminal) : terminal_(terminal), owner_(tcgetpgrp(terminal)) {
        hasSettings_ = tcgetattr(terminal, &settings_) == 0;
        // A process that is not in the foreground group is stopped by SIGTTOU for what follows.
        sigset_t signals;
        sigemptyset(&signals);
        sigaddset(&signals, SIGTTOU);
        pthread_sigmask(SIG_BLOCK, &signals, &mask_);
    }
    ~TerminalLoan() {
        if (owner_ > 0) {
            tcsetpgrp(terminal_, owner_);
        }
        if (hasSettings_) {
            tcsetattr(terminal_, TCSADRAIN, &settings_);
        }
        pthread_sigmask(SIG_SETMASK, &mask_, nullptr);
    }
    TerminalLoan(const TerminalLoan&) = delete;
    TerminalLoan& operator=(const TerminalLoan&) = delete;

    void handTo(pid_t group) const { tcsetpgrp(terminal_, group); }

private:
    int terminal_;
    pid_t owner_;
    bool hasSettings_ = false;
    termios settings_{};
    sigset_t mask_{};
};

/// Waits for the end without collecting the child, so that its number stays its own. A script that
/// was stopped (by Ctrl-Z, or because it read before it had the terminal) goes on: there is no
/// shell here that could resume it.
void waitForEnd(pid_t child, const TerminalLoan& loan) {
    siginfo_t event{};
    while (waitid(P_PID, static_cast<id_t>(child), &event, WEXITED | WSTOPPED | WNOWAIT) == 0 ||
           errno == EINTR) {
        if (event.si_code == CLD_EXITED || event.si_code == CLD_KILLED ||
            event.si_code == CLD_DUMPED) {
            return;
        }
        if (event.si_code == CLD_STOPPED) {
            waitid(P_PID, static_cast<id_t>(child), &event, WSTOPPED | WNOHANG);
            loan.handTo(child);
            kill(-child, SIGCONT);
        }
        event = {};
    }
}

} // namespace

std::optional<std::filesystem::path> TerminalScript::shell() {
    const std::filesystem::path zsh = "/bin/zsh";
    return access(zsh.c_str(), X_OK) == 0 ? std::optional(zsh) : std::nullopt;
}

int TerminalScript::run(const std::string& script) const {
    const auto zsh = shell();
    if (!zsh) {
        throw std::system_error(ENOENT, std::generic_category(), "/bin/zsh");
    }
    // The shell reads its script as it goes, by name.
    const auto directory = PrivateTemporaryDirectory::create(machine_.temporary, "vellmark-setup-");
    if (!directory) {
        throw std::system_error(errno, std::generic_category(), machine_.temporary.string());
    }
    const std::filesystem::path file = directory->path() / "setup.zsh";
    if (const std::error_code error = replaceWholeFile(file, script)) {
        throw std::system_error(error, file.string());
    }
    ChildConfiguration configuration;
    configuration.executable = *zsh;
    configuration.arguments = {file};
    configuration.environment = machine_.environment;
    configuration.sharesTerminal = true;
    const TerminalLoan loan(terminal_);
    LaunchedChild child(configuration, {terminal_, terminal_, terminal_});
    loan.handTo(child.pid());
    kill(-child.pid(), SIGCONT); // it may have asked for input before it had the terminal
    waitForEnd(child.pid(), loan);
    const ChildExit exit = child.awaitEnd();
    if (exit.bySignal) {
        // What was interrupted takes with it what it has started.
        const std::array leader{child.pid()};
        BoundedProcess::terminateAll(leader, groupGrace);
    }
    child.collect();
    return exit.bySignal ? 128 + exit.status : exit.status;
}

} // namespace vellmark
