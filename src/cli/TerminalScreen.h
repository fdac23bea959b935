#pragma once

#include "cli/TerminalOutput.h"

#include <cstddef>
#include <string_view>
#include <termios.h>

namespace vellmark {

/// The whole terminal as a page that is drawn anew in place. What was on it before comes back on
/// destruction, and so does the way the keyboard works.
class TerminalScreen {
public:
    /// Keys arrive one by one and unseen while it exists, when `keyboard` is a terminal; Ctrl-C is
    /// the key `interrupt` then.
    static constexpr char interrupt = 3;
    TerminalScreen(TerminalOutput& output, int keyboard);
    ~TerminalScreen();
    TerminalScreen(const TerminalScreen&) = delete;
    TerminalScreen& operator=(const TerminalScreen&) = delete;

    bool hasKeyboard() const { return hasKeyboard_; }

    /// Lines below the last row are cut off; `foot` stays visible on the last row.
    void draw(std::string_view text, std::string_view foot);

private:
    std::size_t rows() const;

    TerminalOutput& output_;
    int keyboard_;
    bool hasKeyboard_ = false;
    termios saved_{};
};

} // namespace vellmark
