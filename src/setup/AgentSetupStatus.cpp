#include "setup/AgentSetupStatus.h"

#include <exception>
#include <thread>

namespace vellmark {
namespace {

std::optional<bool> checkedLogin(const Machine& machine, const ProviderDescriptor& descriptor,
                                 const std::filesystem::path& executable) {
    if (!descriptor.setup || !descriptor.setup->isLoggedIn) {
        return std::nullopt;
    }
    try {
        return descriptor.setup->isLoggedIn(machine, executable);
    } catch (const std::exception&) {
        return std::nullopt; // a check that cannot be carried out tells nothing
    }
}

} // namespace

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
    const auto loggedIn = checkedLogin(machine, descriptor, *executable);
    if (!loggedIn) {
        return AgentSetupStatus::unverifiable;
    }
    return *loggedIn ? AgentSetupStatus::ready : AgentSetupStatus::notLoggedIn;
}

std::vector<AgentSetupStatus>
agentSetupStatuses(const Machine& machine, const std::vector<ProviderRegistration>& registrations) {
    std::vector<AgentSetupStatus> statuses(registrations.size(), AgentSetupStatus::unverifiable);
    std::vector<std::thread> checks;
    for (std::size_t i = 0; i < registrations.size(); ++i) {
        checks.emplace_back(
            [&, i] { statuses[i] = agentSetupStatus(machine, registrations[i].descriptor); });
    }
    for (auto& check : checks) {
        check.join();
    }
    return statuses;
}

bool needsSetup(AgentSetupStatus status) {
    return status == AgentSetupStatus::missing || status == AgentSetupStatus::notLoggedIn;
}

} // namespace vellmark
