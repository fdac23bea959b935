#include "cli/CommandTest.h"

#include <nlohmann/json.hpp>

namespace vellmark::tests {
namespace {

using testing::HasSubstr;

using AgentsCommand = CommandTest;

TEST_F(AgentsCommand, TellsWhatIsKnownAndLeavesOutWhatIsNot) {
    sandbox.uninstall("agy");
    sandbox.play("claude", "logged-out");
    sandbox.play("codex", "exits");
    setPreferences(R"({"DisabledProviders":["claude"]})");
    const ProgramResult result = run({"agents", "--json"});
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

} // namespace
} // namespace vellmark::tests
