#pragma once

#include "cli/TerminalOutput.h"

#include <optional>
#include <string>
#include <string_view>
#include <termios.h>
#include <vector>

namespace vellmark {

/// The whole terminal as a page that is drawn anew in place. What was on it before comes back on
/// destruction, and so do the keyboard's settings, bit for bit.
class TerminalScreen {
public:
    /// Keys arrive one by one and unseen while the page is shown, when `keyboard` is a terminal;
    /// Ctrl-C and Ctrl-Z are the keys `interrupt` and `suspend` then.
    static constexpr char interrupt = 3;
    static constexpr char suspend = 26;
    TerminalScreen(TerminalOutput& output, int keyboard);
    ~TerminalScreen() { hide(); }
    TerminalScreen(const TerminalScreen&) = delete;
    TerminalScreen& operator=(const TerminalScreen&) = delete;

    bool hasKeyboard() const { return found_.has_value(); }

    /// Takes the terminal, also once more after somebody else had it.
    void show();
    /// Gives the terminal back as it was found. In the background it belongs to somebody else, and
    /// nothing is touched.
    void hide();

    /// Lines beyond the last row but one are left out; `foot`, where it is not empty, is the last
    /// row.
    void draw(const std::vector<std::string>& lines, std::string_view foot);

private:
    bool isInBackground() const;

    TerminalOutput& output_;
    int keyboard_;
    /// The settings as they were before the first change; absent where there is no keyboard.
    std::optional<termios> found_;
    bool isShown_ = false;
};

} // namespace vellmark
