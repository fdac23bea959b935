#include "platform/UnnamedFile.h"

#include <cstdlib>
#include <fcntl.h>
#include <string>

namespace vellmark {

Descriptor openUnnamedFile(const std::filesystem::path& directory) {
    Descriptor file(
        ::open(directory.c_str(), O_TMPFILE | O_RDWR | O_APPEND | O_CLOEXEC | O_EXCL, 0600));
    if (file.isOpen() || errno == ENOENT || errno == EACCES || errno == EROFS) {
        return file;
    }
    // This file system has no unnamed files.
    std::string path = (directory / ".vellmark-XXXXXX").string();
    file.reset(::mkostemp(path.data(), O_APPEND | O_CLOEXEC));
    if (file.isOpen()) {
        ::unlink(path.c_str());
    }
    return file;
}

} // namespace vellmark
