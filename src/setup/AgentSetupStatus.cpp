#include "setup/AgentSetupStatus.h"

#include "probes/AgentFacts.h"

#include <functional>
#include <future>

namespace vellmark {

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

AgentSetupStatus agentSetupStatus(const Machine& machine, const ProviderDescriptor& descriptor) {
    const auto executable =
        descriptor.executableLocator ? descriptor.executableLocator(machine) : std::nullopt;
    if (!executable) {
        return AgentSetupStatus::missing;
    }
    const auto loggedIn = agentIsLoggedIn(machine, descriptor, *executable);
    if (!loggedIn) {
        return AgentSetupStatus::unverifiable;
    }
    return *loggedIn ? AgentSetupStatus::ready : AgentSetupStatus::notLoggedIn;
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
