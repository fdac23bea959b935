#include "probes/ProviderRegistry.h"
#include "setup/AgentSetupStatus.h"
#include "support/AgentSandbox.h"

#include <gtest/gtest.h>

#include <chrono>
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

// Claude's check may take 10 s and 2 s more until it is killed, Codex's 15 s: together no longer
// than the slower one, and nobody is left.
TEST(AgentSetupStatus, HangingChecksAreBoundedAndRunAtTheSameTime) {
    tests::AgentSandbox sandbox;
    sandbox.play("claude", "login-deaf");
    sandbox.play("codex", "hang");
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(statusesOf(sandbox), (Statuses{unverifiable, unverifiable, ready}));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(22));
    EXPECT_TRUE(sandbox.survivors().empty());
}

} // namespace
} // namespace vellmark
