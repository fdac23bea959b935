#include "support/ProjectDirectories.h"

namespace vellmark::tests {

std::string builtProgram(std::string_view name) {
    return VELLMARK_BINARY_DIRECTORY "/" + std::string(name);
}

std::string sourceFile(std::string_view name) {
    return VELLMARK_SOURCE_DIRECTORY "/" + std::string(name);
}

} // namespace vellmark::tests
