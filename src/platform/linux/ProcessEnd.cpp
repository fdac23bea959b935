#include "platform/ProcessEnd.h"

#include "platform/linux/ProcessDescriptor.h"

#include <cerrno>
#include <system_error>

namespace vellmark {

ProcessEnd::ProcessEnd(pid_t child) : descriptor_(::pidfd_open(child, 0)) {
    if (!descriptor_.isOpen()) {
        throw std::system_error(errno, std::generic_category(), "pidfd_open");
    }
}

} // namespace vellmark
