#include "setup/AgentSetupStatus.h"

#include <functional>
#include <future>

namespace vellmark {

std::string_view setupStepName(SetupStep step) {
    switch (step) {
    case SetupStep::welcome:
        return "welcome";
    case SetupStep::agents:
        return "agents";
    case SetupStep::tools:
        return "tools";
    case SetupStep::finish:
        break;
    }
    return "finish";
}

std::string_view setupStatusKey(AgentSetupStatus status) {
    switch (status) {
    case AgentSetupStatus::missing:
        return "setup.status.missing";
    case AgentSetupStatus::notLoggedIn:
        return "setup.status.notLoggedIn";
    case AgentSetupStatus::ready:
        return "setup.status.ready";
    case AgentSetupStatus::unverifiable:
        break;
    }
    return "setup.status.unverifiable";
}

AgentSetupStatus setupStatusOf(const AgentFacts& facts) {
    if (!facts.toolPath) {
        return AgentSetupStatus::missing;
    }
    if (!facts.loggedIn) {
        return AgentSetupStatus::unverifiable;
    }
    return *facts.loggedIn ? AgentSetupStatus::ready : AgentSetupStatus::notLoggedIn;
}

AgentSetupStatus agentSetupStatus(const Machine& machine, const ProviderDescriptor& descriptor) {
    AgentFacts facts{.id = descriptor.id, .toolPath = {}, .toolVersion = {}, .loggedIn = {}};
    if (descriptor.executableLocator) {
        facts.toolPath = descriptor.executableLocator(machine);
    }
    if (facts.toolPath) {
        facts.loggedIn = agentIsLoggedIn(machine, descriptor, *facts.toolPath);
    }
    return setupStatusOf(facts);
}

std::vector<AgentSetupStatus>
agentSetupStatuses(const Machine& machine, const std::vector<ProviderRegistration>& registrations) {
    // Where no thread is to be had, a check runs on this one when it is asked for its result.
    constexpr auto policy = std::launch::async | std::launch::deferred;
    std::vector<std::future<AgentSetupStatus>> checks;
    for (const ProviderRegistration& registration : registrations) {
        checks.push_back(std::async(policy, agentSetupStatus, std::cref(machine),
                                    std::cref(registration.descriptor)));
    }
    std::vector<AgentSetupStatus> statuses;
    for (auto& check : checks) {
        statuses.push_back(check.get());
    }
    return statuses;
}

bool needsSetup(AgentSetupStatus status) {
    return status == AgentSetupStatus::missing || status == AgentSetupStatus::notLoggedIn;
}

} // namespace vellmark
