#include "platform/UnusedMemory.h"

#include <malloc/malloc.h>

namespace vellmark {

void releaseUnusedMemory() {
    ::malloc_zone_pressure_relief(nullptr, 0);
}

void keepLittleUnusedMemory() {
    // Large blocks are pages of their own here, which go back by themselves.
}

} // namespace vellmark
