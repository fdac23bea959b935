#include "platform/UnusedMemory.h"

#include <malloc/malloc.h>

namespace vellmark {

void releaseUnusedMemory() {
    // The libraries are in the system's shared cache and cost this program nothing.
    ::malloc_zone_pressure_relief(nullptr, 0);
}

} // namespace vellmark
