#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>

namespace vellmark {

/// Which file is at a path: another size or time of change means another program.
struct ExecutableIdentity {
    std::filesystem::path path;
    std::uintmax_t size = 0;
    std::filesystem::file_time_type changedAt{};
    bool operator==(const ExecutableIdentity&) const = default;

    static ExecutableIdentity of(const std::filesystem::path& path);
};

} // namespace vellmark
