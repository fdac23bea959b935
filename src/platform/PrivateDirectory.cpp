#include "platform/PrivateDirectory.h"

#include "platform/SystemError.h"

#include <cerrno>
#include <sys/stat.h>

namespace vellmark {

namespace fs = std::filesystem;

std::error_code makePrivateDirectory(const fs::path& directory) {
    std::error_code error;
    if (directory.empty() || fs::is_directory(directory, error)) {
        return {};
    }
    const fs::path above = directory.parent_path();
    if (above != directory) {
        if (const auto failure = makePrivateDirectory(above)) {
            return failure;
        }
    }
    if (::mkdir(directory.c_str(), S_IRWXU) == 0) {
        // The umask may have taken rights away that are needed at once.
        return ::chmod(directory.c_str(), S_IRWXU) == 0 ? std::error_code() : lastSystemError();
    }
    const std::error_code failure = lastSystemError();
    // Another process may have been faster.
    return fs::is_directory(directory, error) ? std::error_code() : failure;
}

} // namespace vellmark
