#include "platform/WholeFile.h"

#include "platform/Descriptor.h"
#include "platform/RegularFile.h"
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

std::optional<std::string> readRegularFile(const std::filesystem::path& file, std::size_t limit,
                                           std::error_code& error) {
    const Descriptor opened = openRegularFile(file, O_RDONLY, error);
    if (!opened.isOpen()) {
        return std::nullopt;
    }
    auto contents = readToEnd(opened.get(), error, limit + 1);
    if (contents && contents->size() > limit) {
        error = std::make_error_code(std::errc::file_too_large);
        return std::nullopt;
    }
    return contents;
}

std::error_code replaceWholeFile(const std::filesystem::path& file, std::string_view contents,
                                 ReplacementFile::Mode mode) {
    ReplacementFile replacement(file, ReplacementFile::Name::unique,
                                ReplacementFile::Links::followed, mode);
    replacement.write(contents);
    return replacement.commit();
}

} // namespace vellmark
