#include "platform/ProgramPath.h"

#include <system_error>

namespace vellmark {

std::filesystem::path programPath() {
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error);
}

} // namespace vellmark
