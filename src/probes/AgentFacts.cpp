#include "probes/AgentFacts.h"

#include "probes/ToolVersion.h"

#include <exception>
#include <future>

namespace vellmark {
namespace {

using Version = std::optional<std::string>;
using Login = std::optional<bool>;

/// The checks of one agent while they run.
struct Inquiry {
    AgentFacts known;
    std::future<Version> version;
    std::future<Login> login;
};

Inquiry inquire(const Machine& machine, const ProviderDescriptor& agent) {
    Inquiry inquiry{.known = {.id = agent.id}, .version = {}, .login = {}};
    if (agent.executableLocator)
        inquiry.known.toolPath = agent.executableLocator(machine);
    if (!inquiry.known.toolPath)
        return inquiry;
    const std::filesystem::path& tool = *inquiry.known.toolPath;
    inquiry.version =
        std::async(std::launch::async, [&machine, tool] { return toolVersion(machine, tool); });
    if (agent.setup && agent.setup->isLoggedIn) {
        inquiry.login = std::async(std::launch::async, [&machine, &agent, tool]() -> Login {
            try {
                return agent.setup->isLoggedIn(machine, tool);
            } catch (const std::exception&) {
                return std::nullopt; // one agent's check does not cost the answers of all others
            }
        });
    }
    return inquiry;
}

} // namespace

std::vector<AgentFacts> gatherAgentFacts(const Machine& machine,
                                         const std::vector<ProviderRegistration>& agents) {
    std::vector<Inquiry> inquiries;
    for (const ProviderRegistration& registration : agents)
        inquiries.push_back(inquire(machine, registration.descriptor));

    std::vector<AgentFacts> facts;
    for (Inquiry& inquiry : inquiries) {
        if (inquiry.version.valid())
            inquiry.known.toolVersion = inquiry.version.get();
        if (inquiry.login.valid())
            inquiry.known.loggedIn = inquiry.login.get();
        facts.push_back(std::move(inquiry.known));
    }
    return facts;
}

} // namespace vellmark
