#include "platform/FileSync.h"

#include <unistd.h>

namespace vellmark {

bool syncFile(int descriptor) {
    return ::fsync(descriptor) == 0;
}

} // namespace vellmark
