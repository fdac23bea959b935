#include "platform/FileLock.h"

#include "platform/PrivateDirectory.h"
#include "platform/RegularFile.h"
#include "platform/SystemError.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <sys/file.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace vellmark {

std::optional<FileLock> FileLock::acquire(const std::filesystem::path& lockFile, Seconds patience,
                                          std::error_code& error) {
    constexpr int flags = O_RDWR | O_CREAT;
    Descriptor descriptor = openRegularFile(lockFile, flags, error);
    if (error == std::errc::no_such_file_or_directory) {
        makePrivateDirectory(lockFile.parent_path());
        descriptor = openRegularFile(lockFile, flags, error);
    }
    if (!descriptor.isOpen() || (error = lock(descriptor, patience))) {
        return std::nullopt;
    }
    return FileLock(std::move(descriptor));
}

std::error_code FileLock::lock(const Descriptor& file, Seconds patience) {
    // There is no lock that waits for a limited time, so this asks again, ever less often.
    using Clock = std::chrono::steady_clock;
    const auto deadline = Clock::now() + std::chrono::duration_cast<Clock::duration>(patience);
    auto pause = std::chrono::milliseconds(1);
    while (::flock(file.get(), LOCK_EX | LOCK_NB) != 0) {
        if (errno == EINTR) {
            continue;
        }
        if (errno != EWOULDBLOCK || Clock::now() >= deadline) {
            return lastSystemError();
        }
        std::this_thread::sleep_for(pause);
        pause = std::min(pause * 2, std::chrono::milliseconds(50));
    }
    return {};
}

std::string FileLock::note() const {
    std::array<char, 64> buffer{};
    const ssize_t count = ::pread(descriptor_.get(), buffer.data(), buffer.size(), 0);
    return {buffer.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0))};
}

void FileLock::setNote(const std::string& text) const {
    // A note that cannot be written costs no more than what it would have saved.
    if (::pwrite(descriptor_.get(), text.data(), text.size(), 0) ==
        static_cast<ssize_t>(text.size())) {
        (void)!::ftruncate(descriptor_.get(), static_cast<off_t>(text.size()));
    }
}

} // namespace vellmark
