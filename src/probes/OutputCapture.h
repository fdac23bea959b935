#pragma once

#include "platform/ChildPipes.h"

#include <cstddef>
#include <string>

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

    /// For the launch; then `closeChildEnd`, or the end of the stream is never seen.
    int childEnd() const { return pipe_.writeEnd.get(); }
    void closeChildEnd() { pipe_.writeEnd.reset(); }

    /// -1 once the stream has ended, which `poll` passes over.
    int descriptor() const { return pipe_.readEnd.get(); }
    bool hasEnded() const { return !pipe_.readEnd.isOpen(); }

    /// Reads what is there, at most 64 KiB, beyond the limit too. False when there was nothing.
    bool drain();

    const std::string& text() const { return text_; }
    std::string takeText() { return std::move(text_); }

private:
    void keep(const char* bytes, std::size_t count);

    Pipe pipe_;
    std::size_t limit_;
    Part part_;
    std::string text_;
};

} // namespace vellmark
