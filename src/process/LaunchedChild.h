#pragma once

#include "platform/ProcessEnd.h"
#include "process/ChildConfiguration.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <sys/types.h>

namespace vellmark {

/// The descriptors that become a child's standard streams; -1 is the null device.
struct ChildStreams {
    int input = -1;
    int output = -1;
    int error = -1;
};

/// How a child ended.
struct ChildExit {
    /// Exit status, or the number of the signal.
    std::int32_t status = 0;
    bool bySignal = false;
};

/// How long after a child's end to go on reading its pipes, which something that it started may
/// hold.
inline constexpr std::chrono::milliseconds readingAfterEnd{100};

/// A child that was launched and is not collected yet, so that its number is its own. It is in the
/// registry from the launch until `collect` or `handOver`. Destroying it earlier kills it.
class LaunchedChild {
public:
    /// Ignores `configuration`'s output settings. Throws std::system_error; with
    /// std::errc::operation_canceled when the registry is closed.
    LaunchedChild(const ChildConfiguration& configuration, const ChildStreams& streams);
    ~LaunchedChild();
    LaunchedChild(LaunchedChild&& other) noexcept;
    LaunchedChild& operator=(LaunchedChild&&) = delete;

    pid_t pid() const { return pid_; }
    /// Readable when the child has ended.
    int endDescriptor() const { return end_->descriptor(); }

    /// Waits for the end; the child stays uncollected.
    ChildExit awaitEnd() const;
    /// Waits for the end, leaves the registry and gives the number back to the system. Nothing may
    /// be about to signal the child or its group at that point.
    ChildExit collect();
    /// Leaves the registry although the child is not collected; whoever holds this object looks
    /// after it.
    void handOver();

private:
    void kill();

    pid_t pid_ = -1;
    std::optional<ProcessEnd> end_;
};

} // namespace vellmark
