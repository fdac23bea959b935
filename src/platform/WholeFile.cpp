#include "platform/WholeFile.h"

#include "platform/Descriptor.h"
#include "platform/ReplacementFile.h"
#include "platform/SystemError.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace vellmark {

std::optional<std::string> readWholeFile(const std::filesystem::path& file, std::error_code& error,
                                         std::size_t limit) {
    const Descriptor opened(::open(file.c_str(), O_RDONLY | O_CLOEXEC));
    if (!opened.isOpen()) {
        error = lastSystemError();
        return std::nullopt;
    }
    return readToEnd(opened.get(), error, limit);
}

std::optional<std::string> readToEnd(int descriptor, std::error_code& error, std::size_t limit) {
    error.clear();
    std::string contents;
    std::array<char, 65536> chunk;
    ssize_t count = 0;
    while (contents.size() < limit &&
           (count = ::read(descriptor, chunk.data(),
                           std::min(chunk.size(), limit - contents.size()))) != 0) {
        if (count > 0) {
            contents.append(chunk.data(), static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            error = lastSystemError();
            return std::nullopt;
        }
    }
    return contents;
}

std::error_code replaceWholeFile(const std::filesystem::path& file, std::string_view contents) {
    ReplacementFile replacement(file, ReplacementFile::Name::unique);
    replacement.write(contents);
    return replacement.commit();
}

} // namespace vellmark
