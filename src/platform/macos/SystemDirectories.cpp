#include "platform/SystemDirectories.h"

#include <array>
#include <limits.h>
#include <unistd.h>

namespace vellmark {

namespace {

/// The user's own temporary directory, which the system makes below /var/folders.
std::filesystem::path userTemporaryDirectory() {
    std::array<char, PATH_MAX> path{};
    const std::size_t length = confstr(_CS_DARWIN_USER_TEMP_DIR, path.data(), path.size());
    if (length == 0 || length > path.size()) {
        return "/tmp";
    }
    return path.data();
}

} // namespace

SystemDirectories SystemDirectories::of(const std::filesystem::path& home,
                                        const Environment& environment) {
    const auto temporary = absolutePathVariable(environment, "TMPDIR");
    return {
        .applicationSupport = home / "Library/Application Support",
        .configuration = home / "Library/Preferences",
        .temporary = temporary.empty() ? userTemporaryDirectory() : temporary,
    };
}

} // namespace vellmark
