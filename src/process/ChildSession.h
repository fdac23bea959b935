#pragma once

#include "process/BoundedProcess.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace vellmark {

/// A conversation with a child over pipes: one launch, writes to its input, reads of its output.
///
/// The child is registered from the launch until the session is destroyed. Destroying it closes
/// the input, asks a child that still runs and its family to stop (SIGTERM) and leaves it
/// to the background reaper, which collects it and kills what lives 3 s later; nobody waits for
/// that. Writing to a child that has gone is no error and raises no signal. One thread at a time.
class ChildSession {
public:
    enum class ErrorStream { nullDevice, pipe };

    /// `configuration`'s output settings are ignored: standard input and output are pipes. Throws
    /// std::system_error when the child cannot be launched.
    ChildSession(const ChildConfiguration& configuration, ErrorStream errors);
    ~ChildSession();
    ChildSession(const ChildSession&) = delete;
    ChildSession& operator=(const ChildSession&) = delete;

    /// Writes all of `bytes` unless the child closes its input or `limit` passes; false then.
    bool write(std::string_view bytes, Seconds limit);

    enum class ReadEvent { data, idle, endOfFile, failed };
    /// Waits for up to `wait` for output and appends what is there, at most 64 KiB, to `buffer`.
    /// Text that arrives on the error pipe meanwhile is drained and kept (its last 64 KiB). The
    /// output has ended when the child has closed it, and 100 ms after the child's end when a
    /// grandchild keeps it open in silence.
    ReadEvent read(std::string& buffer, Seconds wait);

    /// The text that the child has written to its error pipe so far.
    std::string errorText();

    pid_t processIdentifier() const;

private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace vellmark
