#pragma once

#include "platform/ChildPipes.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace vellmark {

/// The parent's side of one output stream of a child: a pipe that is read without ever waiting.
class OutputCapture {
public:
    enum class Part {
        beginning, ///< the first `limit` bytes are kept
        end,       ///< the last `limit` bytes are kept
    };

    /// Throws std::system_error.
    OutputCapture(std::size_t limit, Part part);

    /// Copies the first `limit` bytes to `file`, which stays the caller's, in place of keeping
    /// them.
    static OutputCapture recording(int file, std::size_t limit);

    /// For the launch; then `closeChildEnd`, or the end of the stream is never seen.
    int childEnd() const { return pipe_.writeEnd.get(); }
    void closeChildEnd() { pipe_.writeEnd.reset(); }

    /// -1 once the stream has ended, which `poll` passes over.
    int descriptor() const { return pipe_.readEnd.get(); }
    bool hasEnded() const { return !pipe_.readEnd.isOpen(); }
    /// There was more to record than `limit`, or than could be written.
    bool hasOutgrownFile() const { return hasOutgrownFile_; }

    /// Reads what is there, at most 64 KiB, beyond the limit too. False when there was nothing.
    bool drain();

    const std::string& text() const { return text_; }
    std::string takeText() { return std::move(text_); }

private:
    void keep(std::string_view bytes);
    void record(std::string_view bytes);
    void keepEnd(std::string_view bytes);

    Pipe pipe_;
    std::size_t limit_;
    Part part_;
    int file_ = -1;
    std::size_t recorded_ = 0;
    bool hasOutgrownFile_ = false;
    std::string text_;
};

} // namespace vellmark
