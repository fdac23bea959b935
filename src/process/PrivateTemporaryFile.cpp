#include "process/PrivateTemporaryFile.h"

#include "platform/UnnamedFile.h"

#include <array>
#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

namespace vellmark {

std::optional<PrivateTemporaryFile>
PrivateTemporaryFile::create(const std::filesystem::path& directory) {
    Descriptor descriptor = openUnnamedFile(directory);
    if (!descriptor.isOpen()) {
        return std::nullopt;
    }
    return PrivateTemporaryFile(std::move(descriptor));
}

bool PrivateTemporaryFile::hasRoom() const {
    struct stat before = {};
    if (::fstat(descriptor(), &before) != 0) {
        return false;
    }
    const std::array<char, 4096> block{};
    const bool isWritten =
        ::write(descriptor(), block.data(), block.size()) == static_cast<ssize_t>(block.size());
    return ::ftruncate(descriptor(), before.st_size) == 0 && isWritten;
}

std::string PrivateTemporaryFile::contents() const {
    struct stat status = {};
    if (::fstat(descriptor(), &status) != 0 ||
        static_cast<std::size_t>(status.st_size) > readLimit) {
        return {};
    }
    std::string text(static_cast<std::size_t>(status.st_size), '\0');
    std::size_t filled = 0;
    while (filled < text.size()) {
        const ssize_t count = ::pread(descriptor(), text.data() + filled, text.size() - filled,
                                      static_cast<off_t>(filled));
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            break;
        }
        filled += static_cast<std::size_t>(count);
    }
    text.resize(filled);
    return text;
}

} // namespace vellmark
