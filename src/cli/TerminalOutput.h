#pragma once

#include "cli/Shapes.h"
#include "platform/Machine.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <system_error>

namespace vellmark {

/// Looks of text on a terminal, by what they mean.
enum class TextStyle { plain, strong, dim, healthy, attention, critical };

/// When text has colours.
enum class ColorChoice { automatic, always, never };

/// One of the program's output streams: what it can show, and how to write to it.
///
/// Main thread. A failure to write is remembered and everything after it is dropped; the program
/// looks at `error` once, at its end.
class TerminalOutput {
public:
    /// `environment` decides on the shapes, and on colours: a terminal has them, but not with
    /// NO_COLOR (not empty), and not a "dumb" one.
    TerminalOutput(int descriptor, const Environment& environment);
    /// The user's word, which goes before the environment's.
    void chooseColors(ColorChoice choice);

    bool isTerminal() const { return isTerminal_; }
    /// A line on it can be drawn anew.
    bool canRedraw() const { return canRedraw_; }
    /// Columns; of a terminal as it is now. A stream that is none has room for `streamWidth`.
    std::size_t width() const;
    static constexpr std::size_t streamWidth = 100;
    /// Lines of a terminal as it is now; 24 where that is not known.
    std::size_t height() const;

    const Shapes& shapes() const { return shapes_; }
    /// `text` for people, in what the stream can show: its marks in ASCII where there is no more.
    std::string shown(std::string_view text) const;
    /// `text` cut to at most `width` columns.
    std::string cut(std::string_view text, std::size_t width) const;

    /// `text` with the look, where the stream has looks.
    std::string styled(TextStyle style, std::string_view text) const;

    /// Text for people.
    void write(std::string_view text) { writeData(shown(text)); }
    /// What other programs read: byte for byte.
    void writeData(std::string_view bytes);

    /// Why a write failed; empty when none did.
    std::error_code error() const { return error_; }
    /// The reader closed its end ("vellmark … | head"), which is no fault.
    bool readerHasGone() const { return error_ == std::errc::broken_pipe; }

private:
    int descriptor_;
    bool isTerminal_;
    bool canRedraw_ = false;
    bool hasStyles_ = false;
    const Shapes& shapes_;
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
