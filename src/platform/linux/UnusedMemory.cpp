#include "platform/UnusedMemory.h"

#include <malloc.h>

namespace vellmark {

void releaseUnusedMemory() {
    ::malloc_trim(0);
}

} // namespace vellmark
