#pragma once

#include "text/Instant.h"

#include <optional>

namespace vellmark {

/// Tells from two clocks that the system has slept: the wall clock went on meanwhile, a steady
/// clock that stops during sleep did not. For systems that announce no wake.
class ClockJump {
public:
    /// A shorter gap is a loaded machine or a corrected clock, not a sleep.
    static constexpr Seconds leastSleep{30};

    /// Both clocks at one moment, looked at again and again. True when a sleep lies between the
    /// last look and this one.
    bool look(Instant wall, Seconds steady) {
        const Seconds offset = wall.time_since_epoch() - steady;
        const bool hasSlept = lastOffset_ && offset - *lastOffset_ >= leastSleep;
        lastOffset_ = offset;
        return hasSlept;
    }

private:
    std::optional<Seconds> lastOffset_;
};

} // namespace vellmark
