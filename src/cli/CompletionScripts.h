#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vellmark {

/// The shells that there is a script for.
const std::vector<std::string>& completionShells();

/// What teaches a shell to complete the program's arguments; empty for an unknown shell. The script
/// asks "vellmark complete" at each key, so it never grows old.
std::string_view completionScript(std::string_view shell);

} // namespace vellmark
