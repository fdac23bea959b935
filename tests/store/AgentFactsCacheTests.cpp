#include "store/AgentFactsCache.h"
#include "support/AgentSandbox.h"
#include "support/HandTurnedExecutor.h"

#include <gtest/gtest.h>

namespace vellmark::tests {
namespace {

class AgentFactsCacheTest : public testing::Test {
protected:
    AgentFactsCacheTest() { sandbox.installScript("codex", "echo codex-cli 0.50.1"); }

    AgentFactsCache make() {
        return {{.machine = sandbox.machine(), .now = [this] { return executor.now(); }},
                executor,
                [this] { ++changes; }};
    }
    void finish(const AgentFactsCache& facts) {
        ASSERT_TRUE(executor.turnUntil([&] { return !facts.isAsking(codex); }));
    }

    const AgentProviderID codex = AgentProviderID::codex();
    AgentSandbox sandbox{};
    HandTurnedExecutor executor;
    int changes = 0;
};

TEST_F(AgentFactsCacheTest, AsksWhenSomebodyLooksAndRemembersForAWhile) {
    AgentFactsCache facts = make();
    EXPECT_EQ(facts.of(codex), nullptr);
    facts.need(codex);
    EXPECT_TRUE(facts.isAsking(codex));
    facts.recheck(codex);
    finish(facts);
    EXPECT_EQ(changes, 2) << "one inquiry: begun and ended";
    ASSERT_NE(facts.of(codex), nullptr);
    EXPECT_EQ(facts.of(codex)->toolVersion, "codex-cli 0.50.1");

    sandbox.uninstall("codex");
    facts.need(codex);
    EXPECT_FALSE(facts.isAsking(codex));
    facts.recheck(codex);
    EXPECT_TRUE(facts.of(codex)->toolPath) << "known while it is asked anew";
    finish(facts);
    EXPECT_FALSE(facts.of(codex)->toolPath);

    const fs::path other =
        sandbox.machine().home / "tools/codex"; // what the settings name counts at once
    sandbox.machine().chosenExecutables->choose("codex", other);
    facts.need(codex);
    EXPECT_TRUE(facts.isAsking(codex));
    finish(facts);
    facts.need(codex);
    EXPECT_FALSE(facts.isAsking(codex));

    executor.advance(AgentFactsCache::freshFor);
    facts.need(codex);
    EXPECT_TRUE(facts.isAsking(codex));
    finish(facts);
    facts.need(AgentProviderID("unknown"));
    EXPECT_EQ(facts.of(AgentProviderID("unknown")), nullptr);
}

TEST_F(AgentFactsCacheTest, MayGoDuringAnInquiry) {
    {
        AgentFactsCache facts = make();
        facts.need(codex);
    }
    changes = 0;
    executor.turn();
    EXPECT_EQ(changes, 0);
    EXPECT_TRUE(sandbox.survivors().empty());
}

} // namespace
} // namespace vellmark::tests
