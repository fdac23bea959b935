#include "probes/ProviderRegistry.h"
#include "setup/AgentSetupStatus.h"
#include "support/AgentSandbox.h"

#include <gtest/gtest.h>

#include <atomic>
#include <vector>

namespace vellmark {
namespace {

using Statuses = std::vector<AgentSetupStatus>;
using enum AgentSetupStatus;

// In the registry's order: Codex, Claude, Antigravity.
Statuses statusesOf(tests::AgentSandbox& sandbox) {
    return agentSetupStatuses(sandbox.machine(), providerRegistry());
}

TEST(AgentSetupStatus, TellsWhatEachAgentLacks) {
    tests::AgentSandbox sandbox;
    EXPECT_EQ(statusesOf(sandbox), (Statuses{ready, ready, ready}));

    sandbox.play("codex", "logged-out");
    sandbox.play("claude", "logged-out");
    sandbox.signOutOfAntigravity();
    EXPECT_EQ(statusesOf(sandbox), (Statuses{notLoggedIn, notLoggedIn, notLoggedIn}));

    sandbox.uninstall("codex");
    sandbox.uninstall("claude");
    sandbox.uninstall("agy");
    EXPECT_EQ(statusesOf(sandbox), (Statuses{missing, missing, missing}));
}

// Whatever a CLI does when it is asked about the login, it is not said that nobody is logged in.
TEST(AgentSetupStatus, ACheckThatGoesWrongTellsNothing) {
    tests::AgentSandbox sandbox;
    sandbox.play("claude", "login-garbage");
    sandbox.play("codex", "crash");
    EXPECT_EQ(statusesOf(sandbox), (Statuses{unverifiable, unverifiable, ready}));
    sandbox.installNoProgram("claude");
    sandbox.installNoProgram("codex");
    EXPECT_EQ(statusesOf(sandbox), (Statuses{unverifiable, unverifiable, ready}));
    EXPECT_TRUE(sandbox.survivors().empty());
}

// Each ends by its own limit; together they take no longer than the slowest.
TEST(AgentSetupStatus, ChecksRunAtTheSameTime) {
    tests::AgentSandbox sandbox;
    std::atomic<std::size_t> begun = 0;
    std::vector<ProviderRegistration> registrations = providerRegistry();
    for (ProviderRegistration& registration : registrations) {
        registration.descriptor.setup->isLoggedIn = [&](const Machine&, const auto&) {
            ++begun;
            return tests::becomesTrue([&] { return begun == registrations.size(); });
        };
    }
    EXPECT_EQ(agentSetupStatuses(sandbox.machine(), registrations),
              (Statuses{ready, ready, ready}));
}

} // namespace
} // namespace vellmark
