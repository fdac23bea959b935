#pragma once

#include <filesystem>
#include <string>
#include <system_error>

namespace vellmark {

/// Why `program` could not be started, for UsageProviderError::launchFailed. The system says that a
/// script is missing when the interpreter is that its first line names; then the interpreter stands
/// before the reason.
std::string launchFailureReason(std::error_code error, const std::filesystem::path& program);

} // namespace vellmark
