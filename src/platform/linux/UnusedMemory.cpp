#include "platform/UnusedMemory.h"

#include <malloc.h>

namespace vellmark {

void releaseUnusedMemory() {
    ::malloc_trim(0);
}

void keepLittleUnusedMemory() {
    // Left to itself, the limit grows with the largest block that was freed, and the tops of the
    // threads' heaps, which malloc_trim does not reach, stay.
    ::mallopt(M_TRIM_THRESHOLD, 256 * 1024);
}

} // namespace vellmark
