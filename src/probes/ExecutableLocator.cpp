#include "probes/ExecutableLocator.h"

#include <initializer_list>
#include <unistd.h>

namespace vellmark {

namespace fs = std::filesystem;

namespace {

std::optional<fs::path> firstExecutable(const Machine& machine, const char* agent,
                                        std::initializer_list<const char*> candidates) {
    const auto chosen =
        machine.chosenExecutables ? machine.chosenExecutables->of(agent) : std::nullopt;
    if (chosen) {
        return isExecutableFile(*chosen) ? chosen : std::nullopt;
    }
    for (const char* candidate : candidates) {
        fs::path path = machine.resolved(candidate);
        if (isExecutableFile(path)) {
            return path;
        }
    }
    return std::nullopt;
}

} // namespace

bool isExecutableFile(const fs::path& path) {
    std::error_code error;
    return fs::is_regular_file(path, error) && ::access(path.c_str(), X_OK) == 0;
}

std::optional<fs::path> locateClaude(const Machine& machine) {
    return firstExecutable(machine, "claude",
                           {"~/.local/bin/claude", "~/.claude/local/claude",
                            "/opt/homebrew/bin/claude", "/usr/local/bin/claude"});
}

std::optional<fs::path> locateCodex(const Machine& machine) {
    return firstExecutable(machine, "codex",
                           {"/Applications/ChatGPT.app/Contents/Resources/codex-cli/"
                            "CodexCLI.app/Contents/MacOS/codex",
                            "/opt/homebrew/bin/codex", "/usr/local/bin/codex",
                            "~/.local/bin/codex"});
}

std::optional<fs::path> locateAntigravity(const Machine& machine) {
    return firstExecutable(machine, "antigravity",
                           {"~/.local/bin/agy", "/opt/homebrew/bin/agy", "/usr/local/bin/agy"});
}

} // namespace vellmark
