#pragma once

#include "platform/Machine.h"
#include "probes/AgentFacts.h"
#include "probes/ProviderRegistry.h"

#include <string_view>
#include <vector>

namespace vellmark {

/// Whether an agent's CLI is there and logged in.
enum class AgentSetupStatus {
    missing,      ///< no executable
    notLoggedIn,  ///< installed, and says that nobody is logged in
    ready,        ///< installed and logged in
    unverifiable, ///< installed; the login state cannot be told
};

/// The pages of the setup assistant, in their order.
enum class SetupStep { welcome, agents, tools, finish };
/// What a step is called in the keys of its texts and in the preferences.
std::string_view setupStepName(SetupStep step);

/// The key of the text that shows `status`.
std::string_view setupStatusKey(AgentSetupStatus status);

/// What the facts say of an agent that can be set up.
AgentSetupStatus setupStatusOf(const AgentFacts& facts);

/// Looks for the CLI and runs its login check. Blocks for as long as the check may take.
AgentSetupStatus agentSetupStatus(const Machine& machine, const ProviderDescriptor& descriptor);

/// The same for all `registrations` at once, in their order: takes as long as the slowest.
std::vector<AgentSetupStatus>
agentSetupStatuses(const Machine& machine, const std::vector<ProviderRegistration>& registrations);

/// An agent that is missing or not logged in needs the user; the other two states count as done.
bool needsSetup(AgentSetupStatus status);

} // namespace vellmark
