#include "platform/SystemFacts.h"

#include <array>
#include <sys/sysctl.h>
#include <sys/utsname.h>

namespace vellmark {

SystemFacts systemFacts() {
    utsname names{};
    uname(&names);
    std::array<char, 64> version{};
    auto size = version.size() - 1;
    if (sysctlbyname("kern.osproductversion", version.data(), &size, nullptr, 0) != 0) {
        return {std::string(names.sysname) + " " + names.release, names.machine};
    }
    return {std::string("macOS ") + version.data(), names.machine};
}

} // namespace vellmark
