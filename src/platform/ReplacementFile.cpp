#include "platform/ReplacementFile.h"

#include "platform/PrivateDirectory.h"
#include "platform/SystemError.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

namespace vellmark {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t bufferSize = 1u << 16;

fs::path behindLinks(const fs::path& file) {
    std::error_code error;
    fs::path target = fs::weakly_canonical(file, error);
    return error ? file : target;
}

/// Makes the rename itself survive a power loss. Not every file system can; the data is safe.
void syncDirectory(const fs::path& directory) {
    const Descriptor opened(::open(directory.c_str(), O_RDONLY | O_CLOEXEC));
    if (opened.isOpen()) {
        ::fsync(opened.get());
    }
}

} // namespace

ReplacementFile::ReplacementFile(const fs::path& target, Name name) : target_(behindLinks(target)) {
    error_ = makePrivateDirectory(target_.parent_path());
    if (error_) {
        return;
    }
    if (name == Name::unique) {
        temporary_ = target_.string() + ".XXXXXX";
        descriptor_.reset(::mkostemp(temporary_.data(), O_CLOEXEC));
    } else {
        temporary_ = target_.string() + ".new";
        descriptor_.reset(::open(temporary_.c_str(),
                                 O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, 0600));
    }
    if (!descriptor_.isOpen()) {
        error_ = lastSystemError();
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

std::error_code ReplacementFile::commit() {
    writeOut();
    if (!error_ &&
        (::fsync(descriptor_.get()) != 0 || ::rename(temporary_.c_str(), target_.c_str()) != 0)) {
        error_ = lastSystemError();
    }
    if (!error_) {
        descriptor_.reset();
        syncDirectory(target_.parent_path());
    }
    return error_;
}

} // namespace vellmark
