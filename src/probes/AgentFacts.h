#pragma once

#include "model/AgentProviderID.h"
#include "platform/Machine.h"
#include "probes/ProviderRegistry.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace vellmark {

/// What can be told about an agent's CLI without reading its quotas. What is unknown is absent.
struct AgentFacts {
    AgentProviderID id;
    std::optional<std::filesystem::path> toolPath;
    std::optional<std::string> toolVersion;
    std::optional<bool> loggedIn;
};

/// Whether the user is logged in to the agent whose CLI is at `tool`, by its own check; absent when
/// there is none, it cannot tell, or it fails. Blocks for as long as the check's limits allow.
std::optional<bool> agentIsLoggedIn(const Machine& machine, const ProviderDescriptor& agent,
                                    const std::filesystem::path& tool);

/// The facts of all `agents`, in their order; a check that fails leaves its fact absent. Asks all
/// agents at once, each for its version and its login at the same time. Blocks for as long as the
/// slowest check's limits allow (about 15 s); not for the main thread.
std::vector<AgentFacts>
gatherAgentFacts(const Machine& machine,
                 const std::vector<ProviderRegistration>& agents = providerRegistry());

} // namespace vellmark
