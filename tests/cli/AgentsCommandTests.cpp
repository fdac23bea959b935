#include "cli/ProgramRun.h"
#include "support/AgentSandbox.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace vellmark::tests {
namespace {

using testing::HasSubstr;

class AgentsCommand : public testing::Test {
protected:
    ProgramResult agents(std::vector<std::string> arguments) const {
        const std::string directory = sandbox.machine().home.parent_path().string();
        arguments.insert(arguments.begin(), {"--sandbox", directory, "agents"});
        return ProgramRun::of({.arguments = std::move(arguments)});
    }

    mutable AgentSandbox sandbox;
};

TEST_F(AgentsCommand, TellsWhatIsKnownAndLeavesOutWhatIsNot) {
    sandbox.uninstall("agy");
    sandbox.play("claude", "logged-out");
    sandbox.play("codex", "exits");
    const std::filesystem::path preferences =
        sandbox.machine().configuration / "Vellmark/preferences.json";
    std::filesystem::create_directories(preferences.parent_path());
    std::ofstream(preferences) << R"({"DisabledProviders":["claude"]})";

    const ProgramResult result = agents({"--json"});
    EXPECT_EQ(result.status, 0) << result.errors;
    const auto list = nlohmann::json::parse(result.output);
    ASSERT_EQ(list.size(), 3u);
    EXPECT_EQ(list[0].at("id"), "codex");
    EXPECT_EQ(list[0].at("enabled"), true);
    EXPECT_EQ(list[0].at("toolPath"), (sandbox.machine().home / ".local/bin/codex").string());
    EXPECT_THAT(list[0].at("toolVersion").get<std::string>(), HasSubstr("codex-cli"));
    EXPECT_FALSE(list[0].contains("loggedIn"));
    EXPECT_EQ(list[1].at("name"), "Claude Code");
    EXPECT_EQ(list[1].at("enabled"), false);
    EXPECT_EQ(list[1].at("loggedIn"), false);
    EXPECT_EQ(list[2].size(), 3u) << list[2];
}

TEST_F(AgentsCommand, TheTableSaysTheSameInWords) {
    sandbox.uninstall("agy");
    const ProgramResult result = agents({});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_THAT(result.output, HasSubstr("~/.local/bin/claude"));
    EXPECT_THAT(result.output, HasSubstr("not found"));
    EXPECT_THAT(result.output, testing::Not(HasSubstr("\x1b")));
}

} // namespace
} // namespace vellmark::tests
