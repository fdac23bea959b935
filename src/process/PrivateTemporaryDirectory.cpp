#include "process/PrivateTemporaryDirectory.h"

#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <string>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace vellmark {
namespace {

namespace fs = std::filesystem;

/// Far longer than a directory is there before it is locked.
constexpr std::time_t lockedAfterSeconds = 60;

/// Closed when the directory is not there, not a directory, or locked by a program that lives.
Descriptor openLocked(const fs::path& directory) {
    Descriptor lock(
        ::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (lock.isOpen() && ::flock(lock.get(), LOCK_EX | LOCK_NB) != 0) {
        lock.reset();
    }
    return lock;
}

bool isAbandoned(const Descriptor& lock) {
    struct stat status = {};
    return lock.isOpen() && ::fstat(lock.get(), &status) == 0 && status.st_uid == ::geteuid() &&
           status.st_mtime < std::time(nullptr) - lockedAfterSeconds;
}

} // namespace

void PrivateTemporaryDirectory::removeAbandoned(const fs::path& parent, std::string_view prefix) {
    std::error_code error;
    std::error_code ignored;
    for (fs::directory_iterator entry(parent, error), end; !error && entry != end;
         entry.increment(error)) {
        if (!entry->path().filename().string().starts_with(prefix)) {
            continue;
        }
        const Descriptor lock = openLocked(entry->path());
        if (isAbandoned(lock)) {
            fs::remove_all(entry->path(), ignored);
        }
    }
}

std::optional<PrivateTemporaryDirectory>
PrivateTemporaryDirectory::create(const fs::path& parent, std::string_view prefix) {
    removeAbandoned(parent, prefix);
    std::string path = (parent / (std::string(prefix) + "XXXXXX")).string();
    if (::mkdtemp(path.data()) == nullptr) {
        return std::nullopt;
    }
    return PrivateTemporaryDirectory(path, openLocked(path));
}

PrivateTemporaryDirectory::~PrivateTemporaryDirectory() {
    std::error_code ignored;
    if (!path_.empty()) {
        fs::remove_all(path_, ignored);
    }
}

} // namespace vellmark
