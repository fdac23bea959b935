#include "platform/SystemFacts.h"

#include <fstream>
#include <string_view>
#include <sys/utsname.h>

namespace vellmark {
namespace {

// os-release is a list of shell assignments; its values need no more unquoting than this.
std::string distributionName() {
    std::ifstream file("/etc/os-release");
    constexpr std::string_view key = "PRETTY_NAME=";
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with(key)) {
            line.erase(0, key.size());
            if (line.size() >= 2 && line.front() == '"' && line.back() == '"') {
                line = line.substr(1, line.size() - 2);
            }
            return line;
        }
    }
    return {};
}

} // namespace

SystemFacts systemFacts() {
    utsname names{};
    uname(&names);
    const auto distribution = distributionName();
    const std::string kernel = std::string(names.sysname) + " " + names.release;
    return {distribution.empty() ? kernel : distribution + ", " + kernel, names.machine};
}

} // namespace vellmark
