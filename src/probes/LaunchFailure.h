#pragma once

#include <filesystem>
#include <string>
#include <system_error>

namespace vellmark {

/// Why `program` could not be started, for UsageProviderError::launchFailed. When the interpreter
/// named in a script's first line is missing, the system says that the script is; then the
/// interpreter is put before the reason.
std::string launchFailureReason(std::error_code error, const std::filesystem::path& program);

} // namespace vellmark
