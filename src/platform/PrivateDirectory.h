#pragma once

#include <filesystem>
#include <system_error>

namespace vellmark {

/// Makes `directory`, and those above it, where they are missing; what it makes is the user's alone
/// (0700), whatever the umask.
std::error_code makePrivateDirectory(const std::filesystem::path& directory);

} // namespace vellmark
