#include "probes/PrivateTemporaryFile.h"

#include "model/UUID.h"

#include <cerrno>
#include <chrono>
#include <ctime>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vellmark {

namespace {

/// Far longer than any child is given.
constexpr auto abandonedAfter = std::chrono::minutes(10);

/// What a program that was killed could not delete. Others that run now have written to theirs
/// lately; on an open file that is still read, deleting has no effect.
void removeAbandoned(const std::filesystem::path& directory, std::string_view prefix) {
    const std::time_t limit =
        std::chrono::system_clock::to_time_t(std::chrono::system_clock::now() - abandonedAfter);
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(directory, error)) {
        const std::string name = entry.path().filename().string();
        struct stat status = {};
        if (name.starts_with(prefix) && name.ends_with(".log") &&
            ::lstat(entry.path().c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
            status.st_uid == ::geteuid() && status.st_mtime < limit) {
            ::unlink(entry.path().c_str());
        }
    }
}

} // namespace

std::optional<PrivateTemporaryFile>
PrivateTemporaryFile::create(const std::filesystem::path& directory, std::string_view prefix) {
    removeAbandoned(directory, prefix);
    std::filesystem::path path = directory / (std::string(prefix) + UUID::make().text() + ".log");
    Descriptor descriptor(
        ::open(path.c_str(), O_CREAT | O_EXCL | O_RDWR | O_APPEND | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (!descriptor.isOpen()) {
        return std::nullopt;
    }
    return PrivateTemporaryFile(std::move(path), std::move(descriptor));
}

PrivateTemporaryFile::~PrivateTemporaryFile() {
    if (descriptor_.isOpen()) {
        ::unlink(path_.c_str());
    }
}

std::string PrivateTemporaryFile::contents() const {
    struct stat status = {};
    if (::fstat(descriptor(), &status) != 0 ||
        static_cast<std::uintmax_t>(status.st_size) > readLimit) {
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
