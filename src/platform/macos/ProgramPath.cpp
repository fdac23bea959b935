#include "platform/ProgramPath.h"

#include <cstdint>
#include <mach-o/dyld.h>
#include <string>

namespace vellmark {

std::filesystem::path programPath() {
    std::uint32_t size = 0;
    _NSGetExecutablePath(nullptr, &size);
    std::string path(size, '\0');
    if (_NSGetExecutablePath(path.data(), &size) != 0) {
        return {};
    }
    std::error_code error;
    return std::filesystem::canonical(path.c_str(), error);
}

} // namespace vellmark
