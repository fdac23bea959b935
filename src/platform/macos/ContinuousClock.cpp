#include "platform/ContinuousClock.h"

#include <mach/mach_time.h>

namespace vellmark {

std::chrono::duration<double> continuousSeconds() {
    mach_timebase_info_data_t base{};
    ::mach_timebase_info(&base);
    return std::chrono::duration<double>(static_cast<double>(::mach_continuous_time()) *
                                         base.numer / base.denom * 1e-9);
}

} // namespace vellmark
