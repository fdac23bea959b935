#include "setup/TerminalScript.h"

#include "probes/LaunchedChild.h"
#include "probes/PrivateTemporaryFile.h"

#include <cerrno>
#include <csignal>
#include <string_view>
#include <sys/wait.h>
#include <system_error>
#include <termios.h>
#include <unistd.h>

namespace vellmark {
namespace {

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

void writeAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const auto written = write(descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno != EINTR) {
            throw std::system_error(errno, std::generic_category(), "setup script");
        }
        bytes.remove_prefix(written > 0 ? static_cast<std::size_t>(written) : 0);
    }
}

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
    auto file = PrivateTemporaryFile::create(machine_.temporary, "vellmark-setup-");
    if (!zsh || !file) {
        throw std::system_error(zsh ? errno : ENOENT, std::generic_category(),
                                zsh ? machine_.temporary.string() : "/bin/zsh");
    }
    writeAll(file->descriptor(), script);
    ChildConfiguration configuration;
    configuration.executable = *zsh;
    configuration.arguments = {file->path()};
    configuration.environment = machine_.environment;
    const TerminalLoan loan(terminal_);
    LaunchedChild child(configuration, {terminal_, terminal_, terminal_});
    loan.handTo(child.pid());
    kill(-child.pid(), SIGCONT); // it may have asked for input before it had the terminal
    waitForEnd(child.pid(), loan);
    const ChildExit exit = child.collect();
    return exit.bySignal ? 128 + exit.status : exit.status;
}

} // namespace vellmark
