#include "platform/RegularFile.h"

#include "platform/SystemError.h"
#include "platform/WholeFile.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>

namespace vellmark {

namespace fs = std::filesystem;

namespace {

class RegularFileCategory final : public std::error_category {
public:
    const char* name() const noexcept override { return "regular file"; }
    std::string message(int) const override { return "Not a regular file"; }
};

} // namespace

std::error_code notRegularFile() {
    static const RegularFileCategory category;
    return {1, category};
}

Descriptor openRegularFile(const fs::path& file, int flags, std::error_code& error) {
    error.clear();
    const bool writes = (flags & O_ACCMODE) != O_RDONLY;
    // Without blocking, even a pipe opens at once and can then be examined.
    Descriptor opened(::open(file.c_str(),
                             flags | O_CLOEXEC | O_NONBLOCK | O_NOCTTY | (writes ? O_NOFOLLOW : 0),
                             S_IRUSR | S_IWUSR));
    if (!opened.isOpen()) {
        // A link (or one in circles), a directory, a socket.
        const bool isIrregular = errno == ELOOP || errno == EISDIR || errno == ENXIO;
        error = isIrregular ? notRegularFile() : lastSystemError();
        return {};
    }
    struct stat status {};
    if (::fstat(opened.get(), &status) != 0 || !S_ISREG(status.st_mode)) {
        error = notRegularFile();
        return {};
    }
    if (writes && (status.st_mode & S_IWUSR) == 0) {
        error = std::make_error_code(std::errc::permission_denied);
        return {};
    }
    return opened;
}

std::optional<std::string> readRegularFile(const fs::path& file, std::error_code& error,
                                           std::size_t limit) {
    struct stat status {};
    if (::stat(file.c_str(), &status) != 0) {
        error = lastSystemError();
        return std::nullopt;
    }
    if (!S_ISREG(status.st_mode)) {
        error = notRegularFile();
        return std::nullopt;
    }
    const Descriptor opened = openRegularFile(file, O_RDONLY, error);
    return opened.isOpen() ? readToEnd(opened.get(), error, limit) : std::nullopt;
}

fs::path fileInTheWay(const fs::path& file) {
    const auto isIrregular = [](const fs::path& path) {
        struct stat status {};
        return ::lstat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode);
    };
    if (isIrregular(file)) {
        return file;
    }
    const std::string name = file.filename().string();
    const std::string stem = name.substr(0, name.find('.')) + ".";
    std::error_code error;
    for (fs::directory_iterator entry(file.parent_path(), error), end; !error && entry != end;
         entry.increment(error)) {
        if (entry->path().filename().string().starts_with(stem) && isIrregular(entry->path())) {
            return entry->path();
        }
    }
    return file;
}

} // namespace vellmark
