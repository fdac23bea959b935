#pragma once

#include "platform/DescriptorWatcher.h"

#include <functional>
#include <memory>

namespace vellmark {

/// Tells when the system has woken from sleep, until it is destroyed.
class WakeObserver {
public:
    virtual ~WakeObserver() = default;
};

/// Calls `onWake` on the main thread after each wake. Null where the system announces none (Linux
/// without logind): then the caller has to tell by the clocks.
std::unique_ptr<WakeObserver> observeWake(DescriptorWatcher& loop, std::function<void()> onWake);

} // namespace vellmark
