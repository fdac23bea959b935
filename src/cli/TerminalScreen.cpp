#include "cli/TerminalScreen.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <unistd.h>

namespace vellmark {

namespace {

// Control sequences of ECMA-48 and xterm: other page, hidden cursor, and back.
constexpr std::string_view enter = "\033[?1049h\033[?25l";
constexpr std::string_view leave = "\033[?25h\033[?1049l";
constexpr std::string_view toTop = "\033[H";
constexpr std::string_view clearLine = "\033[K";
constexpr std::string_view clearBelow = "\033[J";

std::optional<termios> settingsOf(int keyboard) {
    termios settings{};
    return ::tcgetattr(keyboard, &settings) == 0 ? std::optional(settings) : std::nullopt;
}

void setSettings(int keyboard, const termios& settings) {
    while (::tcsetattr(keyboard, TCSANOW, &settings) != 0 && errno == EINTR) {
    }
}

} // namespace

TerminalScreen::TerminalScreen(TerminalOutput& output, int keyboard)
    : output_(output), keyboard_(keyboard), found_(settingsOf(keyboard)) {
    show();
}

void TerminalScreen::show() {
    if (found_) {
        termios single = *found_;
        // Ctrl-C arrives as a key, also where the caller ignores the signal; Ctrl-Z does, so that
        // the page is put away before the shell has the terminal.
        single.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO | ISIG);
        single.c_cc[VMIN] = 1;
        single.c_cc[VTIME] = 0;
        // In the background the system stops the program here until it is in the foreground.
        setSettings(keyboard_, single);
    }
    output_.writeData(enter);
    isShown_ = true;
}

void TerminalScreen::hide() {
    if (!isShown_ || isInBackground()) {
        return;
    }
    isShown_ = false;
    output_.writeData(leave);
    if (found_) {
        setSettings(keyboard_, *found_);
    }
}

bool TerminalScreen::isInBackground() const {
    const pid_t foreground = ::tcgetpgrp(keyboard_);
    return foreground >= 0 && foreground != ::getpgrp();
}

void TerminalScreen::draw(const std::vector<std::string>& lines, std::string_view foot) {
    const std::size_t rows = std::max<std::size_t>(output_.height(), 1);
    const std::size_t room = foot.empty() ? rows : rows - 1;
    std::string page(toTop);
    for (std::size_t row = 0; row < std::min(room, lines.size()); ++row) {
        // Cleared first: after its last column a line would lose it.
        page += row == 0 ? "" : "\r\n";
        page += clearLine;
        page += lines[row];
    }
    if (lines.size() < room) {
        page += lines.empty() ? "" : "\r\n";
        page += clearBelow;
    }
    if (!foot.empty()) {
        page += "\033[" + std::to_string(rows) + ";1H";
        page += clearLine;
        page += foot;
    }
    output_.write(page);
}

} // namespace vellmark
