#pragma once

#include <filesystem>
#include <system_error>

namespace vellmark {

/// Creates `directory` and any missing directories above it; what it creates is the user's alone
/// (0700), whatever the umask.
std::error_code makePrivateDirectory(const std::filesystem::path& directory);

} // namespace vellmark
