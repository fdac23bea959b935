#pragma once

#include "platform/Descriptor.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <sys/ioctl.h>
#include <system_error>
#include <termios.h>

namespace vellmark::tests {

/// A terminal of a given size that nobody looks at.
class TestTerminal {
public:
    explicit TestTerminal(int columns, int rows = 24) {
        if (::unlockpt(controller_.get()) != 0) {
            throw std::system_error(errno, std::generic_category(), "unlockpt");
        }
        terminal_ = Descriptor(::open(::ptsname(controller_.get()), O_RDWR | O_NOCTTY));
        winsize size{};
        size.ws_col = static_cast<unsigned short>(columns);
        size.ws_row = static_cast<unsigned short>(rows);
        ::ioctl(terminal_.get(), TIOCSWINSZ, &size);
    }

    int descriptor() const { return terminal_.get(); }

    termios settings() const {
        termios settings{};
        ::tcgetattr(terminal_.get(), &settings);
        return settings;
    }

private:
    Descriptor controller_{::posix_openpt(O_RDWR | O_NOCTTY)};
    Descriptor terminal_;
};

} // namespace vellmark::tests
