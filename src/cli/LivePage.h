#pragma once

#include "cli/TerminalOutput.h"

#include <cstddef>
#include <string>

namespace vellmark {

/// Lines at the end of a terminal's output that are drawn anew in place. Gone on destruction,
/// unless they are to stay.
///
/// As much as fits the terminal is shown: what has scrolled away could not be drawn anew.
class LivePage {
public:
    /// `output` can redraw.
    explicit LivePage(TerminalOutput& output) : output_(output) {}
    ~LivePage() { clear(); }
    LivePage(const LivePage&) = delete;
    LivePage& operator=(const LivePage&) = delete;

    /// `foot` is always shown, unless it is empty.
    void show(const std::string& text, const std::string& foot);
    void clear();
    /// What is shown stays on the terminal.
    void keep() { shownRows_ = 0; }

private:
    std::string backToTop() const;

    TerminalOutput& output_;
    std::size_t shownRows_ = 0;
    std::size_t shownWidth_ = 0;
};

} // namespace vellmark
