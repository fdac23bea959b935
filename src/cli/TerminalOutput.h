#pragma once

#include "platform/Machine.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <system_error>

namespace vellmark {

/// Looks of text on a terminal, by what they mean.
enum class TextStyle { plain, strong, dim, healthy, attention, critical };

/// One of the program's output streams: what it can show, and how to write to it.
///
/// Main thread. A failure to write is remembered and everything after it is dropped; the program
/// looks at `error` once, at its end.
class TerminalOutput {
public:
    /// `environment` decides on colours: none with NO_COLOR (not empty) or a "dumb" terminal.
    TerminalOutput(int descriptor, const Environment& environment);

    bool isTerminal() const { return isTerminal_; }
    /// A line on it can be drawn anew.
    bool canRedraw() const { return canRedraw_; }
    /// Columns; of a terminal as it is now. A stream that is none has room for `streamWidth`.
    std::size_t width() const;
    static constexpr std::size_t streamWidth = 100;

    /// `text` with the look, where the stream has looks.
    std::string styled(TextStyle style, std::string_view text) const;

    void write(std::string_view text);

    /// Why a write failed; empty when none did.
    std::error_code error() const { return error_; }
    /// The reader closed its end ("vellmark … | head"), which is no fault.
    bool readerHasGone() const { return error_ == std::errc::broken_pipe; }

private:
    int descriptor_;
    bool isTerminal_;
    bool canRedraw_;
    bool hasStyles_;
    std::size_t columnsVariable_ = 0;
    std::error_code error_;
};

/// A line at the bottom of a terminal that tells what is going on; gone when there is nothing to
/// tell. Shows nothing where lines cannot be redrawn.
class ProgressLine {
public:
    explicit ProgressLine(TerminalOutput& output) : output_(output) {}
    ~ProgressLine() { clear(); }
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    void show(const std::string& text);
    void clear();

private:
    TerminalOutput& output_;
    std::string shown_;
};

} // namespace vellmark
