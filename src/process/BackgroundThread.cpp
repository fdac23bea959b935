#include "process/BackgroundThread.h"

#include "platform/AllSignalsBlocked.h"

#include <thread>
#include <utility>

namespace vellmark {
void startBackgroundThread(std::function<void()> work) {
    const AllSignalsBlocked blocked;
    std::thread(std::move(work)).detach();
}

} // namespace vellmark
