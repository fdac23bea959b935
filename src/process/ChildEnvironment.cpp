#include "process/ChildEnvironment.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace vellmark {
namespace {

/// Folders that the user may have chosen for an agent; these override every rule below.
constexpr std::array<std::string_view, 2> kept{"CLAUDE_CONFIG_DIR", "CODEX_HOME"};
/// Given a key, an agent bills by use and shows other limits than the subscription's.
constexpr std::array<std::string_view, 2> dropped{"ANTHROPIC_API_KEY", "OPENAI_API_KEY"};
/// Set by an agent's session for its own children: an agent that finds these believes it is nested.
constexpr std::array<std::string_view, 5> droppedPrefixes{
    "CLAUDECODE", "CLAUDE_CODE_", "CLAUDE_AGENT_", "CODEX_", "ANTIGRAVITY_"};

bool reachesChildren(std::string_view name) {
    if (std::ranges::find(kept, name) != kept.end()) {
        return true;
    }
    if (std::ranges::find(dropped, name) != dropped.end()) {
        return false;
    }
    return std::ranges::none_of(
        droppedPrefixes, [name](std::string_view prefix) { return name.starts_with(prefix); });
}

std::string searchPath(const Machine& machine, const Environment& inherited) {
    std::string path;
    for (const char* const folder : {"~/.local/bin", "/opt/homebrew/bin", "/usr/local/bin"}) {
        path += machine.resolved(folder).string() + ":";
    }
    const auto own = inherited.find("PATH");
    // An empty entry would mean the working directory.
    const bool hasOwn = own != inherited.end() && !own->second.empty();
    return path + (hasOwn ? own->second : "/usr/bin:/bin:/usr/sbin:/sbin");
}

} // namespace

Environment childEnvironment(const Machine& machine, const Environment& extra) {
    Environment environment;
    for (const auto& [name, value] : machine.environment) {
        if (reachesChildren(name)) {
            environment.emplace(name, value);
        }
    }
    environment["PATH"] = searchPath(machine, environment);
    for (const auto& [name, value] : extra) {
        environment[name] = value;
    }
    return environment;
}

} // namespace vellmark
