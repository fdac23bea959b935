#include "probes/AgentFacts.h"
#include "probes/ExecutableLocator.h"
#include "probes/ProviderRegistry.h"
#include "support/AgentSandbox.h"

#include <gmock/gmock.h>

#include <stdexcept>

namespace vellmark {
namespace {

using ::testing::ElementsAre;
using tests::TemporaryDirectory;
namespace fs = std::filesystem;

TEST(ProviderRegistry, OffersACompleteAgentInEveryPlace) {
    const TemporaryDirectory directory;
    const Machine machine = Machine::sandbox(directory.path());
    std::vector<std::string> ids;
    for (const auto& [descriptor, make, savedRuns] : providerRegistry()) {
        ids.push_back(descriptor.id.rawValue);
        EXPECT_EQ(make(machine, {})->id(), descriptor.id);
        EXPECT_EQ(providerDescriptor(descriptor.id), &descriptor);
        EXPECT_TRUE(savedRuns.read);
        ASSERT_TRUE(descriptor.setup);
        EXPECT_TRUE(descriptor.setup->isLoggedIn);
        EXPECT_EQ(descriptor.executableLocator(machine), std::nullopt);
        EXPECT_TRUE(descriptor.drivesGlyph());
    }
    EXPECT_THAT(ids, ElementsAre("codex", "claude", "antigravity"));
    EXPECT_EQ(providerDescriptor(AgentProviderID("unknown")), nullptr);
}

TEST(ExecutableLocator, TriesItsPlacesInOrder) {
    const TemporaryDirectory directory;
    const Machine machine = Machine::sandbox(directory.path());
    const auto places = {"home/.local/bin/claude", "home/.claude/local/claude",
                         "root/opt/homebrew/bin/claude", "root/usr/local/bin/claude"};
    for (const char* place : places) {
        directory.writeExecutable(place, "#!/bin/sh\n");
    }
    for (const char* place : places) {
        EXPECT_EQ(locateClaude(machine), directory / place);
        fs::remove(directory / place);
    }
    EXPECT_EQ(locateClaude(machine), std::nullopt);
    // That of the desktop application counts before the user's own.
    const auto codex = directory.writeExecutable("home/.local/bin/codex", "#!/bin/sh\n");
    EXPECT_EQ(locateCodex(machine), codex);
    const auto bundled = directory.writeExecutable(
        "root/Applications/ChatGPT.app/Contents/Resources/codex-cli/CodexCLI.app/Contents/MacOS/"
        "codex",
        "#!/bin/sh\n");
    EXPECT_EQ(locateCodex(machine), bundled);
}

TEST(ExecutableLocator, PassesOverWhatCannotBeExecuted) {
    const TemporaryDirectory directory;
    const Machine machine = Machine::sandbox(directory.path());
    directory.write("home/.local/bin/claude", "not executable");
    fs::create_directories(directory / "home/.claude/local/claude");
    fs::create_directories(directory / "root/opt/homebrew/bin");
    fs::create_symlink("/nonexistent", directory / "root/opt/homebrew/bin/claude");
    EXPECT_EQ(locateClaude(machine), std::nullopt);

    const auto real = directory.writeExecutable("elsewhere/claude", "#!/bin/sh\n");
    fs::create_directories(directory / "root/usr/local/bin");
    fs::create_symlink(real, directory / "root/usr/local/bin/claude");
    EXPECT_EQ(locateClaude(machine), directory / "root/usr/local/bin/claude");

    // The user's choice stands alone, in every copy of the machine.
    const Machine copy = machine;
    copy.chosenExecutables->choose("claude", real);
    EXPECT_EQ(locateClaude(machine), real);
    fs::remove(real);
    EXPECT_EQ(locateClaude(machine), std::nullopt) << "and no other is run in its place";
    EXPECT_EQ(locateCodex(machine), std::nullopt);
}

TEST(AgentFacts, AreToldEvenWhereALoginCheckThrows) {
    tests::AgentSandbox sandbox;
    std::vector<ProviderRegistration> agents = providerRegistry();
    agents[0].descriptor.setup->isLoggedIn = [](const Machine&,
                                                const fs::path&) -> std::optional<bool> {
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
