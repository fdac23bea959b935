#pragma once

#include "process/ChildConfiguration.h"
#include "process/LaunchedChild.h"
#include "process/OutputCapture.h"

#include <array>
#include <chrono>
#include <functional>
#include <optional>
#include <poll.h>
#include <string>

namespace vellmark {

/// Where the output of a bounded child goes and what of it is captured or recorded.
class ChildOutputs {
public:
    using Clock = std::chrono::steady_clock;

    /// Throws std::system_error.
    explicit ChildOutputs(const ChildConfiguration& configuration);

    /// For the launch; then `closeChildEnds`.
    const ChildStreams& streams() const { return streams_; }
    void closeChildEnds();

    /// Called once, as soon as the child has written more than was to be recorded.
    std::function<void()> onCapped;
    bool isCapped() const { return isCapped_; }

    /// Reads until `end` is readable, but not beyond `deadline`. True when it is readable.
    bool drainUntil(int end, std::optional<Clock::time_point> deadline = std::nullopt);
    /// Reads to the end of the streams, but not beyond `deadline`; at least once, however late it
    /// is.
    void drainUntil(Clock::time_point deadline);

    std::string takeOutput() { return output_ ? output_->takeText() : std::string(); }
    std::string takeError() { return error_ ? error_->takeText() : std::string(); }

private:
    using Events = std::array<pollfd, 3>;

    static std::optional<OutputCapture> prepare(const ChildOutput& wanted, int& stream);
    bool haveEnded() const;
    Events awaited(int end) const;
    void drainReady(const Events& events);

    ChildStreams streams_;
    std::optional<OutputCapture> output_;
    std::optional<OutputCapture> error_;
    bool isCapped_ = false;
};

} // namespace vellmark
