#pragma once

#include "platform/DescriptorWatcher.h"
#include "platform/SignalChannel.h"

#include <functional>
#include <memory>

namespace vellmark {

/// Turns SIGTERM, SIGINT and SIGHUP into a call on the main thread, until destroyed. One at a time.
class TerminationSignals {
public:
    TerminationSignals(DescriptorWatcher& loop, std::function<void()> onSignal);

private:
    SignalChannel channel_;
    std::unique_ptr<DescriptorWatch> watch_;
};

} // namespace vellmark
