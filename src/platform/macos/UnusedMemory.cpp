#include "platform/UnusedMemory.h"

#include <malloc/malloc.h>

namespace vellmark {

void releaseUnusedMemory() {
    ::malloc_zone_pressure_relief(nullptr, 0);
}

} // namespace vellmark
