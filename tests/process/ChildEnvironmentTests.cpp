#include "process/ChildEnvironment.h"
#include "support/Matchers.h"

namespace vellmark::tests {
namespace {

using ::testing::Key;

Machine machineWith(Environment environment) {
    Machine machine;
    machine.home = "/home/ada";
    machine.environment = std::move(environment);
    return machine;
}

TEST(ChildEnvironment, KeysAndTracesOfSurroundingSessionsStayBehind) {
    for (const char* const name :
         {"ANTHROPIC_API_KEY", "OPENAI_API_KEY", "CLAUDECODE", "CLAUDECODE_ANYTHING",
          "CLAUDE_CODE_ENTRYPOINT", "CLAUDE_AGENT_SDK_VERSION", "CODEX_SANDBOX", "CODEX_HOMES",
          "ANTIGRAVITY_TOKEN"}) {
        EXPECT_THAT(childEnvironment(machineWith({{name, "x"}})), Not(Contains(Key(name))));
    }
}

TEST(ChildEnvironment, EverythingElseReachesTheChild) {
    for (const char* const name :
         {"CODEX_HOME", "CLAUDE_CONFIG_DIR", "CLAUDE", "CLAUDE_CODE", "OPENAI_API_KEY_FILE",
          "MY_CODEX_KEY", "HOME", "LANG", "HTTPS_PROXY", "codex_x"}) {
        EXPECT_THAT(childEnvironment(machineWith({{name, "x"}})), Contains(Pair(name, "x")));
    }
}

TEST(ChildEnvironment, ThePathIsExtendedByThePlacesOfAgents) {
    const std::string places = "/home/ada/.local/bin:/opt/homebrew/bin:/usr/local/bin:";
    const auto pathOf = [](const Environment& environment) {
        return childEnvironment(machineWith(environment)).at("PATH");
    };
    EXPECT_EQ(pathOf({{"PATH", "/own:/bin"}}), places + "/own:/bin");
    EXPECT_EQ(pathOf({}), places + "/usr/bin:/bin:/usr/sbin:/sbin");
    EXPECT_EQ(pathOf({{"PATH", ""}}), places + "/usr/bin:/bin:/usr/sbin:/sbin");
}

TEST(ChildEnvironment, ExtraVariablesWinOverEveryRule) {
    const auto environment =
        childEnvironment(machineWith({{"NAME", "inherited"}, {"OTHER", "kept"}}),
                         {{"NAME", "extra"}, {"PATH", "/mine"}, {"CODEX_X", "given"}});
    EXPECT_EQ(environment,
              (Environment{
                  {"NAME", "extra"}, {"OTHER", "kept"}, {"PATH", "/mine"}, {"CODEX_X", "given"}}));
}

} // namespace
} // namespace vellmark::tests
