#include "probes/AgentScenario.h"
#include "probes/ClaudeLimits.h"

#include <algorithm>
#include <string>
#include <vector>

namespace vellmark::tests {
namespace {

using Kind = UsageProviderError::Kind;

/// Claude read as shipped: by its query where it has one.
class ClaudeQueryScenario : public ScenarioTest {
protected:
    /// How many sessions were opened, each of which would have sent a message to a model.
    std::ptrdiff_t messagesToAModel() {
        const std::string lines =
            contentOf(sandbox.machine().home / ".vellmark-simulator/messages");
        return std::ranges::count(lines, '\n');
    }

    static std::string wayOf(const AgentUsageSnapshot& snapshot) {
        for (const SnapshotNote& note : snapshot.notes) {
            if (const auto* way = std::get_if<SnapshotNote::ReadingWay>(&note.value)) {
                return way->way;
            }
        }
        return {};
    }
};

TEST_F(ClaudeQueryScenario, TakesAnAnswerForWhatItIsAndSpendsNothing) {
    for (const auto& [scenario, source] :
         {std::pair("normal", SnapshotSource::live), std::pair("split", SnapshotSource::live),
          std::pair("query-huge", SnapshotSource::live),
          std::pair("query-older", SnapshotSource::live),
          std::pair("query-stale", SnapshotSource::stale)}) {
        SCOPED_TRACE(scenario);
        sandbox.play("claude", scenario);
        ClaudeUsageProvider claude(sandbox.machine(), Seconds(60), {}, quickClaudeLimits());
        const AgentUsageSnapshot snapshot = claude.fetch();
        EXPECT_EQ(snapshot.source, source);
        EXPECT_EQ(windowIDsOf(snapshot),
                  (std::vector<std::string>{"session", "weekly", "fable-weekly"}));
        EXPECT_EQ(snapshot.accountLabel, "name@example.org");
        EXPECT_EQ(wayOf(snapshot), claudeQueryWay);
        EXPECT_EQ(claude.pace(), ReadingPace{});
    }
    EXPECT_EQ(messagesToAModel(), 0);
}

TEST_F(ClaudeQueryScenario, AnAnswerWithoutFiguresIsAReasonAndOpensNoSession) {
    const std::pair<const char*, Kind> cases[] = {
        {"query-unavailable", Kind::claudeServiceUnavailable},
        {"query-refused", Kind::claudeServiceRefused},
        {"query-api-key", Kind::claudeAPIKey},
        {"query-no-subscription", Kind::claudeNoSubscription},
        {"query-nulls", Kind::claudeNoQuotas},
        {"logged-out", Kind::claudeNotLoggedIn},
    };
    for (const auto& [scenario, reason] : cases) {
        sandbox.play("claude", scenario);
        ClaudeUsageProvider claude(sandbox.machine(), Seconds(60), {}, quickClaudeLimits());
        EXPECT_EQ(failureOf(outcomeOf(claude)), reason) << scenario;
    }
    EXPECT_EQ(messagesToAModel(), 0);
}

TEST_F(ClaudeQueryScenario, ACLIWithoutTheQueryIsReadByItsScreensAndRarely) {
    const SnapshotNote costs{SnapshotNote::ReadingCosts{}};
    for (const char* scenario : {"query-silent", "query-wrong-id", "query-unsupported"}) {
        SCOPED_TRACE(scenario);
        sandbox.play("claude", scenario);
        const auto before = messagesToAModel();
        ClaudeUsageProvider claude(sandbox.machine(), Seconds(60), {}, quickClaudeLimits());
        const AgentUsageSnapshot first = claude.fetch();
        EXPECT_EQ(wayOf(first), claudeSessionWay);
        EXPECT_EQ(first.windows.size(), 3u);
        EXPECT_EQ(claude.pace().interval, Seconds(1800));
        EXPECT_EQ(std::ranges::count(first.notes, costs), 1);
        EXPECT_EQ(messagesToAModel(), before + 1);
        if (scenario == std::string_view("query-unsupported")) {
            EXPECT_EQ(std::ranges::count(claude.fetch().notes, costs), 0) << "said once";
            EXPECT_EQ(messagesToAModel(), before + 2);
        }
    }
}

TEST_F(ClaudeQueryScenario, OneWayCanBeForced) {
    sandbox.play("claude", "normal");
    ClaudeUsageProvider session(sandbox.machine(), Seconds(60),
                                {.way = claudeSessionWay, .interval = Seconds(600)},
                                quickClaudeLimits());
    EXPECT_EQ(wayOf(session.fetch()), claudeSessionWay);
    EXPECT_EQ(session.pace().interval, Seconds(600));
    EXPECT_EQ(messagesToAModel(), 1);

    for (const char* scenario : {"query-unsupported", "query-missing", "query-silent"}) {
        sandbox.play("claude", scenario);
        ClaudeUsageProvider query(sandbox.machine(), Seconds(60),
                                  {.way = claudeQueryWay, .interval = {}}, quickClaudeLimits());
        EXPECT_EQ(failureOf(outcomeOf(query)), Kind::claudeQueryFailed) << scenario;
    }
    EXPECT_EQ(messagesToAModel(), 1);
}

TEST_F(ClaudeQueryScenario, AsksOnceForWhatTheCLIWouldRepeat) {
    sandbox.play("claude", "normal");
    ClaudeUsageProvider claude(sandbox.machine(), Seconds(60), {}, quickClaudeLimits());
    const AgentUsageSnapshot first = claude.fetch();
    sandbox.play("claude", "query-unavailable");
    EXPECT_EQ(claude.fetch(), first);

    auto impatient = quickClaudeLimits();
    impatient.repetition = Seconds(0);
    sandbox.play("claude", "normal");
    ClaudeUsageProvider asking(sandbox.machine(), Seconds(60), {}, impatient);
    asking.fetch();
    sandbox.play("claude", "query-unavailable");
    EXPECT_TRUE(failureOf(outcomeOf(asking)));
}

TEST_F(ClaudeQueryScenario, AQueryThatHangsEndsInTimeAndOpensNoSession) {
    sandbox.play("claude", "query-hang");
    auto impatient = quickClaudeLimits();
    impatient.query.answer = Seconds(0.3);
    ClaudeUsageProvider claude(sandbox.machine(), Seconds(60), {}, impatient);
    expectFailure(outcomeOf(claude), UsageProviderError::timeout("Claude"));
    EXPECT_EQ(messagesToAModel(), 0);
}

} // namespace
} // namespace vellmark::tests
