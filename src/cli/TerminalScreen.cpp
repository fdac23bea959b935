#include "cli/TerminalScreen.h"

#include <algorithm>
#include <string>
#include <sys/ioctl.h>
#include <unistd.h>

namespace vellmark {

namespace {

// Control sequences of ECMA-48 and xterm: other page, hidden cursor, and back.
constexpr std::string_view enter = "\033[?1049h\033[?25l";
constexpr std::string_view leave = "\033[?25h\033[?1049l";
constexpr std::string_view toTop = "\033[H";
constexpr std::string_view clearLine = "\033[K";
constexpr std::string_view clearBelow = "\033[J";

} // namespace

TerminalScreen::TerminalScreen(TerminalOutput& output, int keyboard)
    : output_(output), keyboard_(keyboard), hasKeyboard_(::tcgetattr(keyboard, &saved_) == 0) {
    if (hasKeyboard_) {
        termios single = saved_;
        // Ctrl-C arrives as a key, also where the caller ignores the signal; being stopped by
        // Ctrl-Z would leave the shell with this page and this keyboard.
        single.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO | ISIG);
        single.c_cc[VMIN] = 1;
        single.c_cc[VTIME] = 0;
        ::tcsetattr(keyboard, TCSANOW, &single);
    }
    output_.write(enter);
}

TerminalScreen::~TerminalScreen() {
    output_.write(leave);
    if (hasKeyboard_) {
        ::tcsetattr(keyboard_, TCSANOW, &saved_);
    }
}

std::size_t TerminalScreen::rows() const {
    winsize size{};
    const bool known = ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_row > 0;
    return known ? size.ws_row : 24;
}

void TerminalScreen::draw(std::string_view text, std::string_view foot) {
    std::string page(toTop);
    const std::size_t room = rows() - 1;
    for (std::size_t row = 0; row < room && !text.empty(); ++row) {
        const auto end = std::min(text.find('\n'), text.size());
        page += text.substr(0, end);
        page += clearLine;
        page += "\n";
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    page += clearBelow;
    page += "\033[" + std::to_string(room + 1) + ";1H";
    page += foot;
    page += clearLine;
    output_.write(page);
}

} // namespace vellmark
