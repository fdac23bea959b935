#include "platform/WaitingFile.h"

#include "platform/FileLock.h"
#include "platform/FileSync.h"
#include "platform/RegularFile.h"
#include "platform/SystemError.h"
#include "platform/WholeFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vellmark {

namespace {

constexpr FileLock::Seconds patience{0.2};

/// Whoever took the lines over has removed the file meanwhile.
bool wasRemoved(const Descriptor& file) {
    struct stat status {};
    return ::fstat(file.get(), &status) == 0 && status.st_nlink == 0;
}

} // namespace

WaitingFile::WaitingFile(const std::filesystem::path& file)
    : path_(std::filesystem::path(file).replace_extension(".waiting")) {}

std::error_code WaitingFile::add(std::string_view lines) const {
    for (;;) {
        std::error_code error;
        const Descriptor file = openRegularFile(path_, O_RDWR | O_APPEND | O_CREAT, error);
        if (!file.isOpen()) {
            return error;
        }
        if (const auto refusal = FileLock::lock(file, patience)) {
            return refusal;
        }
        if (wasRemoved(file)) {
            continue;
        }
        const off_t before = ::lseek(file.get(), 0, SEEK_END);
        if (static_cast<std::size_t>(before) + lines.size() > mostBytes) {
            return std::make_error_code(std::errc::file_too_large);
        }
        const ssize_t count = ::write(file.get(), lines.data(), lines.size());
        if (count != static_cast<ssize_t>(lines.size())) {
            error =
                count < 0 ? lastSystemError() : std::make_error_code(std::errc::no_space_on_device);
            (void)!::ftruncate(file.get(), before);
            return error;
        }
        syncFile(file.get());
        return {};
    }
}

std::string WaitingFile::lines() const {
    std::error_code ignored; // what cannot be read now can be later
    return readRegularFile(path_, mostBytes, ignored).value_or(std::string());
}

bool WaitingFile::takeOver(const std::function<bool(std::string_view lines)>& take) const {
    std::error_code error;
    const Descriptor file = openRegularFile(path_, O_RDWR, error);
    if (!file.isOpen()) {
        return true;
    }
    if (FileLock::lock(file, FileLock::Seconds(0))) {
        return false;
    }
    if (wasRemoved(file)) {
        return takeOver(take);
    }
    const auto lines = readToEnd(file.get(), error, mostBytes);
    if (lines && (lines->empty() || take(*lines))) {
        ::unlink(path_.c_str());
    }
    return true;
}

} // namespace vellmark
