#pragma once

#include "platform/DescriptorWatcher.h"

#include <functional>
#include <memory>

namespace vellmark {

/// Turns SIGTERM, SIGINT and SIGHUP into a call on the main thread, until destroyed. One at a time.
class TerminationSignals {
public:
    TerminationSignals(DescriptorWatcher& loop, std::function<void()> onSignal);
    ~TerminationSignals();
    TerminationSignals(const TerminationSignals&) = delete;
    TerminationSignals& operator=(const TerminationSignals&) = delete;

private:
    std::unique_ptr<DescriptorWatch> watch_;
};

} // namespace vellmark
