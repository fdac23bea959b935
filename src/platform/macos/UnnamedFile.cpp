#include "platform/UnnamedFile.h"

#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <unistd.h>

namespace vellmark {

Descriptor openUnnamedFile(const std::filesystem::path& directory) {
    std::string path = (directory / ".vellmark-XXXXXX").string();
    Descriptor file(::mkostemp(path.data(), O_APPEND | O_CLOEXEC));
    if (file.isOpen()) {
        ::unlink(path.c_str());
    }
    return file;
}

} // namespace vellmark
