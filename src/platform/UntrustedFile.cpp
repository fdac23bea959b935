#include "platform/UntrustedFile.h"

#include "platform/Descriptor.h"
#include "platform/SystemError.h"
#include "platform/WholeFile.h"

#include <fcntl.h>
#include <sys/stat.h>

namespace vellmark {

std::optional<std::string> readUntrustedFile(const std::filesystem::path& file,
                                             std::error_code& error, std::size_t limit) {
    struct stat status = {};
    // Before the opening, which can do something to a device, and after it: the name may have been
    // given to something else.
    if (::stat(file.c_str(), &status) != 0) {
        error = lastSystemError();
        return std::nullopt;
    }
    Descriptor opened;
    if (S_ISREG(status.st_mode)) {
        opened.reset(::open(file.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
        if (!opened.isOpen() || ::fstat(opened.get(), &status) != 0) {
            error = lastSystemError();
            return std::nullopt;
        }
    }
    if (!S_ISREG(status.st_mode)) {
        error = std::make_error_code(std::errc::not_supported);
        return std::nullopt;
    }
    return readToEnd(opened.get(), error, limit);
}

} // namespace vellmark
