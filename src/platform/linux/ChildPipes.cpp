#include "platform/ChildPipes.h"

#include <cerrno>
#include <csignal>
#include <ctime>
#include <fcntl.h>
#include <pthread.h>
#include <system_error>
#include <unistd.h>

namespace vellmark {
namespace {

constexpr int firstFreeDescriptor = 3;

/// A program started with its standard streams closed gets their numbers for its first files; the
/// child's own streams would then overwrite one another.
Descriptor aboveStandardStreams(Descriptor descriptor) {
    if (descriptor.get() >= firstFreeDescriptor) {
        return descriptor;
    }
    Descriptor moved(::fcntl(descriptor.get(), F_DUPFD_CLOEXEC, firstFreeDescriptor));
    if (!moved.isOpen()) {
        throw std::system_error(errno, std::generic_category(), "fcntl");
    }
    return moved;
}

} // namespace

Pipe makePipe() {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) {
        throw std::system_error(errno, std::generic_category(), "pipe");
    }
    Descriptor readEnd(ends[0]);
    Descriptor writeEnd(ends[1]);
    return {aboveStandardStreams(std::move(readEnd)), aboveStandardStreams(std::move(writeEnd))};
}

ssize_t writeWithoutSignal(int descriptor, std::string_view bytes) {
    sigset_t brokenPipe;
    sigset_t previous;
    sigset_t pending;
    sigemptyset(&brokenPipe);
    sigaddset(&brokenPipe, SIGPIPE);
    ::sigpending(&pending);
    const bool wasPending = sigismember(&pending, SIGPIPE) == 1;
    ::pthread_sigmask(SIG_BLOCK, &brokenPipe, &previous);
    const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
    const int error = errno;
    if (written < 0 && error == EPIPE && !wasPending) {
        // The kernel has sent the signal to this thread, which must not find it on unblocking.
        const timespec atOnce{};
        while (::sigtimedwait(&brokenPipe, nullptr, &atOnce) < 0 && errno == EINTR) {
        }
    }
    ::pthread_sigmask(SIG_SETMASK, &previous, nullptr);
    errno = error;
    return written;
}

void leaveOpenStandardStreamsOnly() {
    if (::close_range(firstFreeDescriptor, ~0U, CLOSE_RANGE_CLOEXEC) == 0) {
        return;
    }
    // A kernel before 5.11.
    const long limit = ::sysconf(_SC_OPEN_MAX);
    for (int descriptor = firstFreeDescriptor; descriptor < limit; ++descriptor) {
        ::fcntl(descriptor, F_SETFD, FD_CLOEXEC);
    }
}

} // namespace vellmark
