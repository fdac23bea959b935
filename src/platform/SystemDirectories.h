#pragma once

#include "platform/Machine.h"

#include <filesystem>

namespace vellmark {

/// The user's folders as this system defines them, from the home directory and the environment.
/// Pure: nothing is created or looked at on disk.
struct SystemDirectories {
    std::filesystem::path applicationSupport;
    std::filesystem::path configuration;
    std::filesystem::path temporary;

    static SystemDirectories of(const std::filesystem::path& home, const Environment& environment);
};

/// `path` in its shortest form: without doubled slashes, "." and a slash at its end.
std::filesystem::path normalized(const std::filesystem::path& path);

/// The value of an environment variable that must hold an absolute path to count; empty otherwise.
std::filesystem::path absolutePathVariable(const Environment& environment, const std::string& name);

} // namespace vellmark
