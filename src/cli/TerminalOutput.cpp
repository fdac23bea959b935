#include "cli/TerminalOutput.h"

#include "cli/DisplayWidth.h"
#include "platform/SystemError.h"

#include <cerrno>
#include <cstdlib>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace vellmark {
namespace {

std::string variable(const Environment& environment, const std::string& name) {
    const auto found = environment.find(name);
    return found == environment.end() ? std::string() : found->second;
}

/// Select Graphic Rendition codes, ECMA-48 8.3.117.
std::string_view renditionCode(TextStyle style) {
    switch (style) {
    case TextStyle::strong:
        return "1";
    case TextStyle::dim:
        return "2";
    case TextStyle::healthy:
        return "32";
    case TextStyle::attention:
        return "33";
    case TextStyle::critical:
        return "31";
    case TextStyle::plain:
        break;
    }
    return {};
}

} // namespace

TerminalOutput::TerminalOutput(int descriptor, const Environment& environment)
    : descriptor_(descriptor), isTerminal_(isatty(descriptor) == 1),
      shapes_(shapesFor(environment)) {
    canRedraw_ = isTerminal_ && variable(environment, "TERM") != "dumb";
    hasStyles_ = canRedraw_ && variable(environment, "NO_COLOR").empty();
    columnsVariable_ = std::strtoul(variable(environment, "COLUMNS").c_str(), nullptr, 10);
}

void TerminalOutput::chooseColors(ColorChoice choice) {
    if (choice != ColorChoice::automatic) {
        hasStyles_ = choice == ColorChoice::always;
    }
}

std::size_t TerminalOutput::width() const {
    if (!isTerminal_) {
        return streamWidth;
    }
    winsize size{};
    if (ioctl(descriptor_, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) {
        return size.ws_col;
    }
    return columnsVariable_ > 0 ? columnsVariable_ : 80;
}

std::size_t TerminalOutput::height() const {
    winsize size{};
    const bool isKnown = ioctl(descriptor_, TIOCGWINSZ, &size) == 0 && size.ws_row > 0;
    return isKnown ? size.ws_row : 24;
}

std::string TerminalOutput::shown(std::string_view text) const {
    return shapes_.isPlain ? inPlainShapes(text) : std::string(text);
}

std::string TerminalOutput::cut(std::string_view text, std::size_t width) const {
    return cutToWidth(text, width, shapes_.ellipsis);
}

std::string TerminalOutput::styled(TextStyle style, std::string_view text) const {
    const std::string_view code = renditionCode(style);
    if (!hasStyles_ || code.empty() || text.empty()) {
        return std::string(text);
    }
    return "\033[" + std::string(code) + "m" + std::string(text) + "\033[0m";
}

void TerminalOutput::writeData(std::string_view bytes) {
    while (!bytes.empty() && !error_) {
        const ssize_t written = ::write(descriptor_, bytes.data(), bytes.size());
        if (written >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno == EAGAIN) {
            // The caller shares a descriptor that somebody made non-blocking.
            pollfd ready{.fd = descriptor_, .events = POLLOUT, .revents = 0};
            poll(&ready, 1, -1);
        } else if (errno != EINTR) {
            error_ = lastSystemError();
        }
    }
}

void ProgressLine::show(const std::string& text) {
    // The last column stays free: some terminals go to the next line when it is filled.
    const std::string line = output_.cut(output_.shown(text), output_.width() - 1);
    if (!output_.canRedraw() || line == shown_) {
        return;
    }
    output_.write("\r\033[K" + output_.styled(TextStyle::dim, line));
    shown_ = line;
}

void ProgressLine::clear() {
    if (shown_.empty()) {
        return;
    }
    output_.write("\r\033[K");
    shown_.clear();
}

} // namespace vellmark
