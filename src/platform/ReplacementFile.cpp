#include "platform/ReplacementFile.h"

#include "platform/FileSync.h"
#include "platform/PrivateDirectory.h"
#include "platform/RegularFile.h"
#include "platform/SystemError.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vellmark {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t bufferSize = 1u << 16;

/// Also a link that leads nowhere yet. One that leads in circles stays a link.
fs::path behindLinks(fs::path file) {
    constexpr int mostLinks = 40;
    std::error_code error;
    for (int count = 0; count < mostLinks && fs::is_symlink(fs::symlink_status(file, error));
         ++count) {
        const fs::path target = fs::read_symlink(file, error);
        if (error) {
            break;
        }
        file = file.parent_path() / target;
    }
    return file;
}

/// Makes the rename itself survive a power loss. Not every file system can; the data is safe.
void syncDirectory(const fs::path& directory) {
    const fs::path named = directory.empty() ? fs::path(".") : directory;
    const Descriptor opened(::open(named.c_str(), O_RDONLY | O_CLOEXEC));
    if (opened.isOpen()) {
        syncFile(opened.get());
    }
}

} // namespace

ReplacementFile::ReplacementFile(const fs::path& target, Name name, Links links, Mode mode)
    : target_(links == Links::followed ? behindLinks(target) : target) {
    error_ = makePrivateDirectory(target_.parent_path());
    if (!error_) {
        open(name, mode);
    }
}

void ReplacementFile::open(Name name, Mode mode) {
    struct stat present {};
    const bool exists = ::lstat(target_.c_str(), &present) == 0;
    if (exists && !S_ISREG(present.st_mode)) {
        error_ = notRegularFile();
        return;
    }
    if (exists && (present.st_mode & S_IWUSR) == 0) {
        error_ = std::make_error_code(std::errc::permission_denied);
        return;
    }
    if (name == Name::unique) {
        temporary_ = target_.string() + ".XXXXXX";
        descriptor_.reset(::mkostemp(temporary_.data(), O_CLOEXEC));
    } else {
        temporary_ = target_.string() + ".new";
        struct stat left {};
        if (::lstat(temporary_.c_str(), &left) == 0) {
            if (!S_ISREG(left.st_mode)) {
                error_ = notRegularFile();
                return;
            }
            ::unlink(temporary_.c_str());
        }
        descriptor_.reset(
            ::open(temporary_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    }
    if (!descriptor_.isOpen()) {
        error_ = lastSystemError();
    } else if (exists && mode != Mode::ownerAlone) {
        ::fchmod(descriptor_.get(), present.st_mode & 0777);
    } else if (mode == Mode::readableByAll) {
        ::fchmod(descriptor_.get(), 0644);
    }
}

ReplacementFile::~ReplacementFile() {
    if (descriptor_.isOpen()) {
        ::unlink(temporary_.c_str());
    }
}

void ReplacementFile::write(std::string_view bytes) {
    buffer_ += bytes;
    if (buffer_.size() >= bufferSize) {
        writeOut();
    }
}

void ReplacementFile::writeOut() {
    std::string_view rest = buffer_;
    while (!rest.empty() && !error_) {
        const ssize_t count = ::write(descriptor_.get(), rest.data(), rest.size());
        if (count < 0 && errno != EINTR) {
            error_ = lastSystemError();
        }
        rest.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    }
    buffer_.clear();
}

std::error_code ReplacementFile::commit(Durability durability) {
    writeOut();
    const bool syncs = durability == Durability::synced;
    if (!error_ && ((syncs && !syncFile(descriptor_.get())) ||
                    ::rename(temporary_.c_str(), target_.c_str()) != 0)) {
        error_ = lastSystemError();
    }
    if (!error_) {
        descriptor_.reset();
        if (syncs) {
            syncDirectory(target_.parent_path());
        }
    }
    return error_;
}

} // namespace vellmark
