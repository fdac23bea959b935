#pragma once

#include "platform/Descriptor.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <functional>
#include <string>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <system_error>
#include <termios.h>
#include <unistd.h>

namespace vellmark::tests {

/// A terminal of a given size, with both of its ends.
class TestTerminal {
public:
    explicit TestTerminal(int columns, int rows = 24) {
        if (::grantpt(controller_.get()) != 0 || ::unlockpt(controller_.get()) != 0) {
            throw std::system_error(errno, std::generic_category(), "pseudo-terminal");
        }
        terminal_ = Descriptor(::open(name().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
        winsize size{};
        size.ws_col = static_cast<unsigned short>(columns);
        size.ws_row = static_cast<unsigned short>(rows);
        ::ioctl(terminal_.get(), TIOCSWINSZ, &size);
    }

    /// The end that programs have.
    int descriptor() const { return terminal_.get(); }
    /// The end of who looks at it and types.
    int controller() const { return controller_.get(); }
    std::string name() const { return ::ptsname(controller_.get()); }

    termios settings() const {
        termios settings{};
        ::tcgetattr(terminal_.get(), &settings);
        return settings;
    }

    /// Makes it the terminal of this process, which begins a session with it.
    void take() const {
        ::setsid();
        ::ioctl(terminal_.get(), TIOCSCTTY, 0);
    }

private:
    Descriptor controller_{::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)};
    Descriptor terminal_;
};

/// Runs `program` in a process that has a terminal of its own, and gives it that. What it returned;
/// -1 when a signal ended it.
inline int statusOnTerminal(const std::function<int(int terminal)>& program) {
    const TestTerminal terminal(80);
    const pid_t pid = ::fork();
    if (pid == 0) {
        terminal.take();
        ::_exit(program(terminal.descriptor()));
    }
    int status = 0;
    ::waitpid(pid, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace vellmark::tests
