#pragma once

#include <filesystem>
#include <system_error>

namespace vellmark {

/// Makes `directory`, and those above it, where it is missing; then it is the user's alone (0700).
inline std::error_code makePrivateDirectory(const std::filesystem::path& directory) {
    std::error_code error;
    if (!directory.empty() && std::filesystem::create_directories(directory, error) && !error) {
        std::filesystem::permissions(directory, std::filesystem::perms::owner_all, error);
    }
    return error;
}

} // namespace vellmark
