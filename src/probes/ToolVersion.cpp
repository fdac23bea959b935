#include "probes/ToolVersion.h"

#include "probes/AgentWorkspace.h"
#include "probes/ExecutableLocator.h"
#include "process/BoundedProcess.h"
#include "process/ChildEnvironment.h"
#include "text/TerminalText.h"

#include <system_error>

namespace vellmark {
namespace {

constexpr Seconds limit{5};
constexpr Seconds killGrace{1};
constexpr std::size_t outputLimit = 64 * 1024;
constexpr std::size_t longestVersion = 120;

std::string outputOf(const Machine& machine, const std::filesystem::path& executable) {
    ChildConfiguration configuration;
    configuration.executable = executable;
    configuration.arguments = {"--version"};
    configuration.environment = childEnvironment(machine);
    configuration.workingDirectory = agentWorkspaceOrRoot(machine, "Version");
    configuration.standardOutput = ChildOutput::captured(outputLimit);
    try {
        return BoundedProcess::run(configuration, limit, killGrace).output;
    } catch (const std::system_error&) {
        return {};
    }
}

} // namespace

std::optional<std::string> toolVersion(const Machine& machine,
                                       const std::filesystem::path& executable) {
    if (!isExecutableFile(executable)) {
        return std::nullopt;
    }
    const std::string output = outputOf(machine, executable);
    const auto lines = nonEmptyLines(output);
    if (lines.empty() || !isValidUTF8(lines.front())) {
        return std::nullopt;
    }
    return firstCharacters(trimmed(lines.front()), longestVersion);
}

} // namespace vellmark
