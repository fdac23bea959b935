#include "platform/ChildPipes.h"

#include <cerrno>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>

namespace vellmark {
namespace {

constexpr int firstFreeDescriptor = 3;

/// A program started with its standard streams closed gets their numbers for its first files; the
/// child's own streams would then overwrite one another.
Descriptor closedOnExec(Descriptor descriptor) {
    Descriptor moved;
    if (descriptor.get() < firstFreeDescriptor) {
        moved.reset(::fcntl(descriptor.get(), F_DUPFD_CLOEXEC, firstFreeDescriptor));
        if (!moved.isOpen()) {
            throw std::system_error(errno, std::generic_category(), "fcntl");
        }
        return moved;
    }
    ::fcntl(descriptor.get(), F_SETFD, FD_CLOEXEC);
    return descriptor;
}

} // namespace

Pipe makePipe() {
    int ends[2];
    if (::pipe(ends) != 0) {
        throw std::system_error(errno, std::generic_category(), "pipe");
    }
    Descriptor readEnd(ends[0]);
    Descriptor writeEnd(ends[1]);
    Pipe pipe{closedOnExec(std::move(readEnd)), closedOnExec(std::move(writeEnd))};
    ::fcntl(pipe.writeEnd.get(), F_SETNOSIGPIPE, 1);
    return pipe;
}

ssize_t writeWithoutSignal(int descriptor, std::string_view bytes) {
    return ::write(descriptor, bytes.data(), bytes.size());
}

void leaveOpenStandardStreamsOnly() {
    const int limit = ::getdtablesize();
    for (int descriptor = firstFreeDescriptor; descriptor < limit; ++descriptor) {
        ::fcntl(descriptor, F_SETFD, FD_CLOEXEC);
    }
}

} // namespace vellmark
