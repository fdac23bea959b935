#include "platform/SystemDirectories.h"

namespace vellmark {

// The XDG Base Directory Specification: a relative path in one of its variables is to be ignored.
SystemDirectories SystemDirectories::of(const std::filesystem::path& home,
                                        const Environment& environment) {
    const auto variableOr = [&](const std::string& name, const std::filesystem::path& fallback) {
        const auto path = absolutePathVariable(environment, name);
        return path.empty() ? fallback : path;
    };
    return {
        .applicationSupport = variableOr("XDG_DATA_HOME", home / ".local/share"),
        .configuration = variableOr("XDG_CONFIG_HOME", home / ".config"),
        .temporary = variableOr("TMPDIR", "/tmp"),
    };
}

} // namespace vellmark
