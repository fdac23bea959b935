#include "probes/AgentFacts.h"
#include "support/AgentSandbox.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace vellmark {
namespace {

TEST(AgentFacts, AreToldEvenWhereALoginCheckThrows) {
    tests::AgentSandbox sandbox;
    std::vector<ProviderRegistration> agents = providerRegistry();
    agents[0].descriptor.setup->isLoggedIn =
        [](const Machine&, const std::filesystem::path&) -> std::optional<bool> {
        throw std::runtime_error("no memory for a pipe");
    };
    const std::vector<AgentFacts> facts = gatherAgentFacts(sandbox.machine(), agents);
    ASSERT_EQ(facts.size(), 3U);
    EXPECT_EQ(facts[0].loggedIn, std::nullopt);
    EXPECT_TRUE(facts[0].toolVersion);
    EXPECT_EQ(facts[1].loggedIn, true);
    EXPECT_EQ(facts[2].loggedIn, true);
}

} // namespace
} // namespace vellmark
