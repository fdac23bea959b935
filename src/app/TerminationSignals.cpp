#include "app/TerminationSignals.h"

#include <csignal>
#include <utility>

namespace vellmark {

TerminationSignals::TerminationSignals(DescriptorWatcher& loop, std::function<void()> onSignal)
    : channel_({SIGTERM, SIGINT, SIGHUP}),
      watch_(loop.watch(channel_.descriptor(), [this, onSignal = std::move(onSignal)] {
          channel_.take();
          onSignal();
      })) {}

} // namespace vellmark
