#include "probes/AgentWorkspace.h"

#include "platform/PrivateDirectory.h"

#include <string>

namespace vellmark {

namespace fs = std::filesystem;

fs::path agentWorkspace(const Machine& machine, std::string_view agent) {
    return machine.supportDirectory() / (std::string(agent) + "Workspace");
}

fs::path madeAgentWorkspace(const Machine& machine, std::string_view agent) {
    fs::path workspace = agentWorkspace(machine, agent);
    if (const std::error_code error = makePrivateDirectory(workspace)) {
        throw fs::filesystem_error("workspace", workspace, error);
    }
    return workspace;
}

fs::path agentWorkspaceOrRoot(const Machine& machine, std::string_view agent) {
    fs::path workspace = agentWorkspace(machine, agent);
    return makePrivateDirectory(workspace) ? fs::path("/") : workspace;
}

} // namespace vellmark
