#pragma once

#include <string>
#include <string_view>

namespace vellmark::tests {

/// The path of a program of this build.
std::string builtProgram(std::string_view name);

/// The path of a file of the source tree.
std::string sourceFile(std::string_view name);

} // namespace vellmark::tests
