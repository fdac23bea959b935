#include "text/Instant.h"

namespace vellmark {

ReferenceClock::time_point ReferenceClock::now() {
    const Seconds sinceUnixEpoch = std::chrono::system_clock::now().time_since_epoch();
    return instantFromUnixSeconds(sinceUnixEpoch.count());
}

} // namespace vellmark
