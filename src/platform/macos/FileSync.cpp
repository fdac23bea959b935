#include "platform/FileSync.h"

#include <fcntl.h>
#include <unistd.h>

namespace vellmark {

/// `fsync` hands the data to the drive, which may keep it in a cache of its own. Some file systems
/// on a network know no more than that.
bool syncFile(int descriptor) {
    return ::fcntl(descriptor, F_FULLFSYNC) == 0 || ::fsync(descriptor) == 0;
}

} // namespace vellmark
