#include "probes/AgentFacts.h"

#include "probes/ToolVersion.h"

#include <exception>
#include <future>

namespace vellmark {
namespace {

using Version = std::optional<std::string>;
using Login = std::optional<bool>;

/// If no thread can be started, a check runs on the caller's thread when its result is asked for.
constexpr auto checkPolicy = std::launch::async | std::launch::deferred;

/// The checks of one agent while they run.
struct Inquiry {
    AgentFacts known;
    std::future<Version> version;
    std::future<Login> login;
};

Inquiry inquire(const Machine& machine, const ProviderDescriptor& agent) {
    Inquiry inquiry{.known = {.id = agent.id}, .version = {}, .login = {}};
    if (agent.executableLocator) {
        inquiry.known.toolPath = agent.executableLocator(machine);
    }
    if (!inquiry.known.toolPath) {
        return inquiry;
    }
    const std::filesystem::path& tool = *inquiry.known.toolPath;
    inquiry.version =
        std::async(checkPolicy, [&machine, tool] { return toolVersion(machine, tool); });
    inquiry.login = std::async(
        checkPolicy, [&machine, &agent, tool] { return agentIsLoggedIn(machine, agent, tool); });
    return inquiry;
}

} // namespace

std::optional<bool> agentIsLoggedIn(const Machine& machine, const ProviderDescriptor& agent,
                                    const std::filesystem::path& tool) {
    if (!agent.setup || !agent.setup->isLoggedIn) {
        return std::nullopt;
    }
    try {
        return agent.setup->isLoggedIn(machine, tool);
    } catch (const std::exception&) {
        return std::nullopt; // one agent's failed check must not cost all other answers
    }
}

std::vector<AgentFacts> gatherAgentFacts(const Machine& machine,
                                         const std::vector<ProviderRegistration>& agents) {
    std::vector<Inquiry> inquiries;
    for (const ProviderRegistration& registration : agents) {
        inquiries.push_back(inquire(machine, registration.descriptor));
    }

    std::vector<AgentFacts> facts;
    for (Inquiry& inquiry : inquiries) {
        if (inquiry.version.valid()) {
            inquiry.known.toolVersion = inquiry.version.get();
        }
        if (inquiry.login.valid()) {
            inquiry.known.loggedIn = inquiry.login.get();
        }
        facts.push_back(std::move(inquiry.known));
    }
    return facts;
}

} // namespace vellmark
