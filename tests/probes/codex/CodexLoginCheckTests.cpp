#include "probes/codex/CodexLoginCheck.h"
#include "probes/codex/CodexMessages.h"
#include "support/AgentSandbox.h"

#include <gtest/gtest.h>

#include <utility>

namespace vellmark {
namespace {

using tests::AgentSandbox;

TEST(CodexLoginCheck, GoesByTheFirstAnswerAboutTheAccount) {
    const std::pair<const char*, std::optional<bool>> cases[] = {
        {R"(echo '{"id":2,"result":{"account":{"email":"a@b.c"}}}')", true},
        {R"(echo '{"id":2,"result":{"account":{}}}')", true},
        {R"(echo '{"id":2,"result":{"account":null,"requiresOpenaiAuth":true}}')", false},
        {R"(echo '{"id":2,"result":{}}')", false},
        {R"(printf '{"id":2,"result":{}}\n{"id":2,"result":{"account":{}}}\n')", false},
        {R"(printf 'x\n{"id":1,"result":{"account":{}}}\n{"id":2,"error":{}}\n')", std::nullopt},
        {"exit 0", std::nullopt},
        {"exec sleep 60", std::nullopt},
    };
    for (const auto& [script, expected] : cases) {
        AgentSandbox sandbox({});
        sandbox.installScript("codex", script);
        const bool answers = std::string_view(script).find("sleep") == std::string_view::npos;
        EXPECT_EQ(codexIsLoggedIn(sandbox.machine(), sandbox.machine().home / ".local/bin/codex",
                                  Seconds(answers ? 60.0 : 0.3)),
                  expected)
            << script;
        EXPECT_EQ(sandbox.survivors(), std::vector<std::string>()) << script;
    }
}

TEST(CodexLoginCheck, AsksForTheAccountAndNothingMore) {
    AgentSandbox sandbox({});
    sandbox.installScript("codex", R"(echo "$@" > "$HOME/arguments"
while read -r line; do
    printf '%s\n' "$line" >> "$HOME/requests"
    case $line in *account/read*) echo '{"id":2,"result":{"account":{}}}';; esac
done)");
    const auto& home = sandbox.machine().home;
    EXPECT_EQ(codexIsLoggedIn(sandbox.machine(), home / ".local/bin/codex", Seconds(60)), true);
    EXPECT_EQ(sandbox.survivors(), std::vector<std::string>());
    EXPECT_EQ(tests::contentOf(home / "arguments"), "app-server --listen stdio://\n");
    EXPECT_EQ(tests::contentOf(home / "requests"), CodexMessages::loginCheck);
    EXPECT_EQ(codexIsLoggedIn(sandbox.machine(), "/nonexistent/codex"), std::nullopt);
}

} // namespace
} // namespace vellmark
