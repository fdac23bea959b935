#pragma once

#include "text/Instant.h"

#include <optional>

namespace vellmark {

/// Tells from two clocks that the system has slept: one goes on meanwhile, the other stops. Nobody
/// sets either. For systems that announce no wake.
class ClockJump {
public:
    /// A shorter gap is a nap that nothing falls due in.
    static constexpr Seconds leastSleep{30};

    /// Both clocks at one moment, looked at again and again. True when a sleep lies between the
    /// last look and this one.
    bool look(Seconds continuous, Seconds steady) {
        const Seconds offset = continuous - steady;
        const bool hasSlept = lastOffset_ && offset - *lastOffset_ >= leastSleep;
        lastOffset_ = offset;
        return hasSlept;
    }

private:
    std::optional<Seconds> lastOffset_;
};

} // namespace vellmark
