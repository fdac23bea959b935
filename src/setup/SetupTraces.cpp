#include "setup/SetupTraces.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <filesystem>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace vellmark {
namespace {

namespace fs = std::filesystem;

std::string traceOf(const fs::path& file) {
    std::error_code error;
    const auto changedAt = fs::last_write_time(file, error);
    const auto size = error ? 0 : fs::file_size(file, error);
    // Of a fixed width: the clock of files counts in more bits on some systems.
    const auto microseconds =
        std::chrono::duration_cast<std::chrono::microseconds>(changedAt.time_since_epoch());
    return error ? "-\n" : std::to_string(microseconds.count()) + " " + std::to_string(size) + "\n";
}

} // namespace

std::string setupTraces(const Machine& machine, const ProviderDescriptor& agent) {
    const auto tool = agent.executableLocator ? agent.executableLocator(machine) : std::nullopt;
    std::string traces = tool ? tool->string() + "\n" + traceOf(*tool) : "-\n";
    std::vector<fs::path> files;
    if (agent.setup && agent.setup->loginTraces) {
        files = agent.setup->loginTraces(machine);
    }
    // What keeps passwords for the CLIs that do not keep them themselves.
    files.push_back(machine.home / "Library/Keychains/login.keychain-db");
    files.push_back(machine.applicationSupport / "keyrings/login.keyring");
    for (const fs::path& file : files) {
        traces += traceOf(file);
    }
    return traces;
}

bool hasHomebrew(const Machine& machine) {
    return std::ranges::any_of(
        std::array{"/opt/homebrew/bin/brew", "/usr/local/bin/brew"},
        [&](const char* path) { return access(machine.resolved(path).c_str(), X_OK) == 0; });
}

} // namespace vellmark
