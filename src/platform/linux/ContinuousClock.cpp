#include "platform/ContinuousClock.h"

#include <ctime>

namespace vellmark {

std::chrono::duration<double> continuousSeconds() {
    timespec now{};
    ::clock_gettime(CLOCK_BOOTTIME, &now);
    return std::chrono::duration<double>(static_cast<double>(now.tv_sec) +
                                         static_cast<double>(now.tv_nsec) * 1e-9);
}

} // namespace vellmark
