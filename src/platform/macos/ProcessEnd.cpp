#include "platform/ProcessEnd.h"

#include <cerrno>
#include <cstdint>
#include <fcntl.h>
#include <sys/event.h>
#include <system_error>

namespace vellmark {
namespace {

bool addEvent(int queue, pid_t ident, std::int16_t filter, std::uint32_t flags) {
    struct kevent event;
    EV_SET(&event, static_cast<uintptr_t>(ident), filter, EV_ADD, flags, 0, nullptr);
    return ::kevent(queue, &event, 1, nullptr, 0, nullptr) == 0;
}

} // namespace

ProcessEnd::ProcessEnd(pid_t child) : descriptor_(::kqueue()) {
    if (!descriptor_.isOpen()) {
        throw std::system_error(errno, std::generic_category(), "kqueue");
    }
    ::fcntl(descriptor_.get(), F_SETFD, FD_CLOEXEC);
    if (addEvent(descriptor_.get(), child, EVFILT_PROC, NOTE_EXIT)) {
        return;
    }
    if (errno != ESRCH) {
        throw std::system_error(errno, std::generic_category(), "kevent");
    }
    // The child has ended already: an event that is there from the start says so.
    if (!addEvent(descriptor_.get(), child, EVFILT_USER, 0) ||
        !addEvent(descriptor_.get(), child, EVFILT_USER, NOTE_TRIGGER)) {
        throw std::system_error(errno, std::generic_category(), "kevent");
    }
}

} // namespace vellmark
